// The language of everything, switched there and back in an open dialog: microseconds a text,
// beside one look-up in a bare QTranslator.

#include "mivohostkit/runtimethread.h"
#include "support/teststore.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivostyle/style.h>

#include <benchmark/benchmark.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTranslator>
#include <QtWidgets/QApplication>

namespace {

/// Every key that the whole dialog looks up in one switch.
QStringList lookedUpKeys(mivohost::SettingsView& view)
{
    QStringList keys;
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    translator.setMissingTextHandler(
        [&keys](const QString&, const QString&, const QString& key) { keys.append(key); });
    view.switchLanguage(QStringLiteral("none"));
    translator.setMissingTextHandler(nullptr);
    return keys;
}

struct OpenDialog
{
    OpenDialog() : view(runtime, store, nullptr), keys(lookedUpKeys(view))
    {
        view.dialog().show();
        for (const char* language : {"en", "zh_cn"}) { // the first glyphs are the dearest
            view.switchLanguage(QString::fromLatin1(language));
            QApplication::processEvents();
        }
    }

    mivohost::RuntimeThread runtime;
    TestStore store;
    mivohost::SettingsView view;
    QStringList keys;
};

void floor(benchmark::State& state)
{
    OpenDialog open;
    QTranslator texts;
    texts.load(mivo::style::languageFiles().front());
    std::vector<QByteArray> keys;
    for (const QString& key : open.keys) {
        keys.push_back(key.toUtf8());
    }
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        for (const QByteArray& key : keys) {
            benchmark::DoNotOptimize(
                texts.translate("SystemSettingsDialog", key.constData(), "Widget"));
        }
        state.SetIterationTime(1e-9 * static_cast<double>(timer.nsecsElapsed())
                               / static_cast<double>(keys.size()));
    }
}

void switching(benchmark::State& state, bool repaints)
{
    OpenDialog open;
    bool chinese = true;
    for (auto _ : state) {
        chinese = !chinese;
        QElapsedTimer timer;
        timer.start();
        open.view.switchLanguage(chinese ? QStringLiteral("zh_cn") : QStringLiteral("en"));
        if (repaints) {
            QApplication::processEvents();
        }
        state.SetIterationTime(1e-9 * static_cast<double>(timer.nsecsElapsed())
                               / static_cast<double>(open.keys.size()));
        QApplication::processEvents();
    }
    state.counters["texts"] = static_cast<double>(open.keys.size());
}

BENCHMARK(floor)->Name("language_per_text/floor")->UseManualTime()->Iterations(200);
BENCHMARK_CAPTURE(switching, ours, false)
    ->Name("language_per_text/set")
    ->UseManualTime()
    ->Iterations(100);
BENCHMARK_CAPTURE(switching, repainted, true)
    ->Name("language_per_text/set_and_repainted")
    ->UseManualTime()
    ->Iterations(100);

} // namespace
