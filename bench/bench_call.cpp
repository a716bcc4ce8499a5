// One read of the store from the GUI thread: callInRuntime on the host's runtime, beside the bare
// hand-over to a thread, and beside Qt's own blocking call.

#include "barethread.h"
#include "mivohostkit/runtimethread.h"
#include "support/teststore.h"
#include <mivosettingswidgets/storeaccess.h>

#include <benchmark/benchmark.h>

#include <QtCore/QObject>
#include <QtCore/QThread>

namespace {

void floor(benchmark::State& state)
{
    BareThread thread;
    TestStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(thread.call([&store] { return store.getUndoStep(); }));
    }
}

void ours(benchmark::State& state)
{
    mivohost::RuntimeThread runtime;
    TestStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mivo::settings::callInRuntime(
            &runtime, __FILE__, __LINE__, "bench", &IMivoSettings::getUndoStep, &store));
    }
}

void blockingQueued(benchmark::State& state)
{
    QThread thread;
    QObject object;
    object.moveToThread(&thread);
    thread.start();
    TestStore store;
    for (auto _ : state) {
        int value = 0;
        QMetaObject::invokeMethod(
            &object, [&store] { return store.getUndoStep(); }, Qt::BlockingQueuedConnection,
            &value);
        benchmark::DoNotOptimize(value);
    }
    thread.quit();
    thread.wait();
}

BENCHMARK(floor)->Name("call/floor")->UseRealTime()->MinTime(0.05);
BENCHMARK(ours)->Name("call/ours")->UseRealTime()->MinTime(0.05);
BENCHMARK(blockingQueued)->Name("call/blocking_queued")->UseRealTime()->MinTime(0.05);

} // namespace
