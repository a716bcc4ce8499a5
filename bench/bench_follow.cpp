// A change in the store until the control shows it, beside a bare queued setValue: one at a time,
// and as a burst of which the last is waited for.

#include "mivohostkit/runtimethread.h"
#include "support/teststore.h"

#include <mivosettingswidgets/undosettingbox.h>
#include <mivowidgets/spineditbox.h>

#include <benchmark/benchmark.h>

#include <QtCore/QCoreApplication>

namespace {

/// Emits `burst` changes on the runtime thread by `change(value)`, and waits for the last of them.
template <typename Change>
void measure(benchmark::State& state, mivohost::RuntimeThread& runtime, QDoubleSpinBox& edit,
             Change change)
{
    const int burst = static_cast<int>(state.range(0));
    int value = 1;
    for (auto _ : state) {
        const int first = value;
        value = 1 + (value + burst) % 400;
        runtime.post(
            [&, first] {
                for (int i = 1; i < burst; ++i) {
                    change(401 + (first + i) % 99);
                }
                change(value);
            },
            __FILE__, __LINE__, "bench");
        while (static_cast<int>(edit.value()) != value) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    state.SetItemsProcessed(state.iterations() * burst);
}

void floor(benchmark::State& state)
{
    mivohost::RuntimeThread runtime;
    QDoubleSpinBox edit;
    edit.setRange(1, 500);
    measure(state, runtime, edit, [&edit](int value) {
        QMetaObject::invokeMethod(&edit, "setValue", Qt::QueuedConnection,
                                  Q_ARG(double, static_cast<double>(value)));
    });
}

void ours(benchmark::State& state)
{
    mivohost::RuntimeThread runtime;
    TestStore store;
    mivo::settings::UndoSettingBox page;
    page.setZRRuntime(&runtime);
    page.setSettings(&store);
    auto* edit = page.findChild<mivo::widgets::SpinEditBox*>();
    QCoreApplication::processEvents();
    measure(state, runtime, *edit, [&store](int value) { store.undoStepChanged(value); });
}

BENCHMARK(floor)->Name("follow/floor")->Arg(1)->Arg(1000)->UseRealTime()->MinTime(0.05);
BENCHMARK(ours)->Name("follow/ours")->Arg(1)->Arg(1000)->UseRealTime()->MinTime(0.05);

} // namespace
