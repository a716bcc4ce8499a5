// Opening the settings dialog in a process that has done so before; with Qt's own look, and with
// the host's style sheet on both sides.

#include "opening.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>

#include <benchmark/benchmark.h>

namespace {

void useLook(bool styled)
{
    qApp->setStyleSheet(styled ? mivohost::hostStyleSheet() : QString());
    SettingWdigetTranslateManager::instance().translator().switchLanguage(QStringLiteral("en"));
}

void floor(benchmark::State& state, bool styled)
{
    useLook(styled);
    const opening::Recipe recipe = opening::makeRecipe();
    for (auto _ : state) {
        state.SetIterationTime(opening::secondsToOpenRaw(recipe));
    }
}

void ours(benchmark::State& state, bool styled)
{
    useLook(styled);
    mivohost::RuntimeThread runtime;
    TestStore store;
    for (auto _ : state) {
        state.SetIterationTime(opening::secondsToOpenOurs(runtime, store));
    }
}

BENCHMARK_CAPTURE(floor, plain, false)->Name("open_warm/floor")->UseManualTime()->Iterations(20);
BENCHMARK_CAPTURE(ours, plain, false)->Name("open_warm/ours")->UseManualTime()->Iterations(20);
BENCHMARK_CAPTURE(floor, styled, true)
    ->Name("open_warm_styled/floor")
    ->UseManualTime()
    ->Iterations(20);
BENCHMARK_CAPTURE(ours, styled, true)
    ->Name("open_warm_styled/ours")
    ->UseManualTime()
    ->Iterations(20);

} // namespace
