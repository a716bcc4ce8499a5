// Opening the settings dialog in a process that has done so before, as a whole and in its steps;
// with Qt's own look, and as a whole also with the host's look on both sides.

#include "barethread.h"
#include "opening.h"
#include "support/uselook.h"

#include <benchmark/benchmark.h>

#include <algorithm>
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
    const auto texts = opening::loadTexts();
    for (auto _ : state) {
        state.SetIterationTime(opening::secondsToOpenRaw(recipe, *texts));
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
    const auto texts = opening::loadTexts();
    measure(
        state, [] { return opening::RawDialog(); },
        [&](opening::RawDialog& raw) { raw = opening::makeRaw(recipe, *texts); });
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

/// Shows what was read, by its number, in its share of the controls of a raw dialog.
class RawBinding : public QObject
{
    Q_OBJECT

public:
    std::vector<std::vector<std::pair<QWidget*, QVariant>>> shares;

public slots:
    void show(int read)
    {
        for (const auto& [control, value] : shares[static_cast<std::size_t>(read)]) {
            opening::showRawValue(control, value);
        }
    }
};

struct BoundRaw
{
    opening::RawDialog raw;
    std::unique_ptr<RawBinding> binding;
    std::vector<sigslot::scoped_connection> connections;
};

/// A raw dialog that was just made: as many calls over a bare thread as the pages need, of which
/// one for each page connects to signals of the store, and the others read a value each. What was
/// read is queued by the name of a slot, and shown in its share of the controls.
void bindFloor(benchmark::State& state)
{
    prepare(false);
    const opening::Recipe recipe = opening::makeRecipe();
    const opening::Recipe bound = opening::makeRecipe(QStringLiteral("en"), true);
    const auto texts = opening::loadTexts();
    const auto isPage = [](const opening::RawPart& part) { return part.kind == "page"; };
    const auto pages =
        static_cast<std::size_t>(std::count_if(recipe.begin(), recipe.end(), isPage));
    const std::size_t reads = static_cast<std::size_t>(hopsOfBinding()) - pages;
    BareThread thread;
    TestStore store;
    std::vector<sigslot::signal<const int>> changed(reads);
    const auto makeUnbound = [&] {
        BoundRaw made{opening::makeRaw(recipe, *texts), std::make_unique<RawBinding>(), {}};
        made.binding->shares.resize(reads);
        for (std::size_t i = 0; i < bound.size(); ++i) {
            if (bound[i].value.isValid()) {
                made.binding->shares[i % reads].emplace_back(made.raw.parts[i], bound[i].value);
            }
        }
        QApplication::processEvents();
        return made;
    };
    measure(state, makeUnbound, [&](BoundRaw& made) {
        RawBinding* binding = made.binding.get();
        const auto queue = [binding](int read) {
            QMetaObject::invokeMethod(binding, "show", Qt::QueuedConnection, Q_ARG(int, read));
        };
        for (std::size_t page = 1; page <= pages; ++page) {
            thread.call([&] {
                while (made.connections.size() < page * reads / pages) {
                    made.connections.emplace_back(changed[made.connections.size()].connect(queue));
                }
                return 0;
            });
        }
        for (std::size_t read = 0; read < reads; ++read) {
            benchmark::DoNotOptimize(thread.call([&store] { return store.getUndoStep(); }));
            queue(static_cast<int>(read));
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
    const auto texts = opening::loadTexts();
    measure(
        state,
        [&] {
            auto raw = opening::makeRaw(recipe, *texts);
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
    const opening::Recipe chinese = opening::makeRecipe(QStringLiteral("zh_cn"));
    const auto englishTexts = opening::loadTexts();
    const auto chineseTexts = opening::loadTexts(QStringLiteral("zh_cn"));
    const auto raw = opening::makeRaw(english, *englishTexts);
    opening::drawFirstFrame(*raw.dialog);
    measureSwitch(state, [&](bool toChinese) {
        opening::setRawTexts(raw, toChinese ? chinese : english,
                             toChinese ? *chineseTexts : *englishTexts);
    });
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

#include "bench_open.moc"
