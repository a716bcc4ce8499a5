// Opening the settings dialog in a process that has done so before, as a whole and in its steps;
// with Qt's own look, and as a whole also with the host's look on both sides.

#include "barethread.h"
#include "opening.h"
#include "support/uselook.h"

#include <benchmark/benchmark.h>

#include <atomic>

namespace {

using mivohost::SettingsView;

using mivo::style::Look;

void prepare(bool styled)
{
    useLook(styled ? std::optional(Look::dark) : std::nullopt);
    useHostLanguage("en");
}

class CountingRuntime : public mivohost::RuntimeThread
{
public:
    ~CountingRuntime() override { stop(); }

    void post(std::function<void()> task, const char* file, int line, const char* function) override
    {
        ++hops;
        RuntimeThread::post(std::move(task), file, line, function);
    }

    std::atomic<int> hops{0};
};

struct Ours
{
    CountingRuntime runtime;
    TestStore store;
};

/// Measures `step(made)` again and again, each time on what `make()` returns.
template <typename Make, typename Step>
void measure(benchmark::State& state, Make make, Step step)
{
    for (auto _ : state) {
        auto made = make();
        QElapsedTimer timer;
        timer.start();
        step(made);
        state.SetIterationTime(1e-9 * static_cast<double>(timer.nsecsElapsed()));
    }
}

// --- As a whole ---

void wholeFloor(benchmark::State& state, bool styled)
{
    prepare(styled);
    const opening::Recipe recipe = opening::makeRecipe();
    for (auto _ : state) {
        state.SetIterationTime(opening::secondsToOpenRaw(recipe));
    }
}

void whole(benchmark::State& state, bool styled)
{
    prepare(styled);
    Ours host;
    for (auto _ : state) {
        state.SetIterationTime(opening::secondsToOpenOurs(host.runtime, host.store));
    }
}

// --- Construction, without a store ---

void constructFloor(benchmark::State& state)
{
    prepare(false);
    const opening::Recipe recipe = opening::makeRecipe();
    measure(
        state, [] { return opening::RawDialog(); },
        [&](opening::RawDialog& raw) { raw = opening::makeRaw(recipe); });
}

void construct(benchmark::State& state)
{
    prepare(false);
    Ours host;
    measure(
        state, [] { return std::unique_ptr<SettingsView>(); },
        [&](std::unique_ptr<SettingsView>& view) {
            view = std::make_unique<SettingsView>(host.runtime, nullptr);
        });
}

// --- Binding: from a store that is there until all values show ---

int hopsOfBinding()
{
    Ours host;
    SettingsView view(host.runtime, nullptr);
    const int before = host.runtime.hops;
    view.bind(host.store);
    return host.runtime.hops - before;
}

/// As many reads over a bare thread, each handed to a raw control through the event loop.
void bindFloor(benchmark::State& state)
{
    prepare(false);
    const int hops = hopsOfBinding();
    std::vector<std::unique_ptr<QDoubleSpinBox>> controls;
    for (int i = 0; i < hops; ++i) {
        controls.push_back(std::make_unique<QDoubleSpinBox>());
    }
    BareThread thread;
    TestStore store;
    int value = 0;
    measure(
        state, [] { return 0; },
        [&](int) {
            value = (value + 1) % 99;
            for (const auto& control : controls) {
                const double read = value + thread.call([&store] { return store.getUndoStep(); });
                QMetaObject::invokeMethod(control.get(), "setValue", Qt::QueuedConnection,
                                          Q_ARG(double, read));
            }
            QApplication::processEvents();
        });
}

void bind(benchmark::State& state)
{
    prepare(false);
    Ours host;
    measure(
        state,
        [&] {
            auto view = std::make_unique<SettingsView>(host.runtime, nullptr);
            QApplication::processEvents();
            return view;
        },
        [&](std::unique_ptr<SettingsView>& view) {
            view->bind(host.store);
            QApplication::processEvents();
        });
    state.counters["hops"] = hopsOfBinding();
}

// --- The first frame, and showing again what was closed ---

void frameFloor(benchmark::State& state, bool again)
{
    prepare(false);
    const opening::Recipe recipe = opening::makeRecipe();
    measure(
        state,
        [&] {
            auto raw = opening::makeRaw(recipe);
            if (again) {
                opening::drawFirstFrame(*raw.dialog);
                raw.dialog->close();
                QApplication::processEvents();
            }
            return raw;
        },
        [](opening::RawDialog& raw) { opening::drawFirstFrame(*raw.dialog); });
}

void frame(benchmark::State& state, bool again)
{
    prepare(false);
    Ours host;
    measure(
        state,
        [&] {
            auto view = std::make_unique<SettingsView>(host.runtime, host.store, nullptr);
            QApplication::processEvents(); // values show
            if (again) {
                opening::drawFirstFrame(view->dialog());
                view->dialog().close();
                QApplication::processEvents();
            }
            return view;
        },
        [](std::unique_ptr<SettingsView>& view) { opening::drawFirstFrame(view->dialog()); });
}

// --- Switching the language of everything until it is painted ---

/// Measures `change(toChinese)`, there and back in turns, until it is painted.
template <typename Change>
void measureSwitch(benchmark::State& state, Change change)
{
    bool odd = false;
    measure(
        state,
        [&] {
            QApplication::processEvents();
            return odd = !odd;
        },
        [&](bool toChinese) {
            change(toChinese);
            QApplication::processEvents();
        });
}

void languageFloor(benchmark::State& state)
{
    prepare(false);
    const opening::Recipe english = opening::makeRecipe();
    useHostLanguage("zh_cn");
    const opening::Recipe chinese = opening::makeRecipe();
    const auto raw = opening::makeRaw(english);
    opening::drawFirstFrame(*raw.dialog);
    measureSwitch(
        state, [&](bool toChinese) { opening::setRawTexts(raw, toChinese ? chinese : english); });
}

void language(benchmark::State& state)
{
    prepare(false);
    Ours host;
    SettingsView view(host.runtime, host.store, nullptr);
    opening::drawFirstFrame(view.dialog());
    measureSwitch(state, [&](bool toChinese) {
        view.switchLanguage(toChinese ? QStringLiteral("zh_cn") : QStringLiteral("en"));
    });
}

void add(const char* name, void (*function)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name, function)->UseManualTime()->Iterations(20);
}

template <typename Argument>
void add(const char* name, void (*function)(benchmark::State&, Argument), Argument argument)
{
    benchmark::RegisterBenchmark(name, function, argument)->UseManualTime()->Iterations(20);
}

const bool added = [] {
    add("open_warm/floor", wholeFloor, false);
    add("open_warm/ours", whole, false);
    add("open_warm_styled/floor", wholeFloor, true);
    add("open_warm_styled/ours", whole, true);
    add("open_1_construction/floor", constructFloor);
    add("open_1_construction/ours", construct);
    add("open_2_binding/floor", bindFloor);
    add("open_2_binding/ours", bind);
    add("open_3_first_frame/floor", frameFloor, false);
    add("open_3_first_frame/ours", frame, false);
    add("open_4_reopening/floor", frameFloor, true);
    add("open_4_reopening/ours", frame, true);
    add("open_5_language/floor", languageFloor);
    add("open_5_language/ours", language);
    return true;
}();

} // namespace
