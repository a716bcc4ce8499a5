// Opening the settings dialog in a process that has done so before, as a whole and in its steps;
// with Qt's own look, and as a whole also with the host's look on both sides.

#include "barethread.h"
#include "opening.h"
#include "support/uselook.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <tuple>
#include <utility>

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

template <typename Runtime>
struct Hosting
{
    Runtime runtime;
    TestStore store;
};

using Ours = Hosting<mivohost::RuntimeThread>;

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

/// Counts the calls that are queued to objects.
class CallCount : public QObject
{
public:
    bool eventFilter(QObject* /*object*/, QEvent* event) override
    {
        calls += event->type() == QEvent::MetaCall ? 1 : 0;
        return false;
    }

    std::size_t calls = 0;
};

/// What binding the dialog takes.
struct BindingCount
{
    std::size_t hops;
    std::size_t connections;
    std::size_t calls; ///< queued, of which each shows one of the store's values
};

BindingCount countBinding()
{
    Hosting<CountingRuntime> host;
    SettingsView view(host.runtime, nullptr);
    QApplication::processEvents();
    CallCount count;
    QApplication::instance()->installEventFilter(&count);
    const int before = host.runtime.hops;
    view.bind(host.store);
    const int hops = host.runtime.hops - before;
    QApplication::processEvents();
    return {static_cast<std::size_t>(hops), host.store.connections(), count.calls};
}

/// A raw dialog that was just made, and what each of the store's values is shown in.
struct BoundRaw
{
    using Share = std::vector<std::pair<QWidget*, QVariant>>;

    opening::RawDialog raw;
    std::vector<Share> shares;
    std::vector<std::function<sigslot::connection()>> signals_;
    std::vector<sigslot::scoped_connection> connections;

    /// Has the share of a value shown from the event loop, to which what was `read` goes along.
    template <typename... Read>
    void queue(std::size_t value, Read... read)
    {
        const auto show = [&share = shares[value], kept = std::make_tuple(std::move(read)...)] {
            benchmark::DoNotOptimize(&kept);
            for (const auto& [control, shown] : share) {
                opening::showRawValue(control, shown);
            }
        };
        QMetaObject::invokeMethod(raw.dialog.get(), show, Qt::QueuedConnection);
    }
};

using Read = std::function<void(BareThread&, IMivoSettings&, BoundRaw&, std::size_t value)>;

/// Reads a record or value on the thread, and queues it as that value.
template <typename Record>
Read reads(Record (IMivoSettings::*getter)())
{
    return [getter](BareThread& thread, IMivoSettings& store, BoundRaw& made, std::size_t value) {
        Record record{};
        thread.call([&] {
            record = (store.*getter)();
            return 0;
        });
        made.queue(value, std::move(record));
    };
}

using S = IMivoSettings;

/// What the pages read.
const std::vector<Read> readsOfPages = {
    reads(&S::getAutoStartSettings),
    reads(&S::getTimedShutdownSettings),
    reads(&S::getTimedAutomaticRestartSettings),
    reads(&S::getProjectFileSettings),
    reads(&S::getFileInfoSettings),
    reads(&S::getCanvasColor),
    reads(&S::getOutputColor),
    reads(&S::getUndoStep),
    reads(&S::getAutoSyncResources),
    reads(&S::getResourceSettings),
    reads(&S::getPPTSysSettings),
    reads(&S::getTcpPort),
    reads(&S::getUdpPort),
    reads(&S::getDisplayControlSettings),
    reads(&S::getFadeInTime),
    reads(&S::getFadeOutTime),
    reads(&S::getGraphicsCard),
    reads(&S::getDisplayTechnologyStandard),
    reads(&S::getDynamicRangeConfig),
};

/// As many calls over a bare thread as the pages need, page by page: one for each page connects to
/// signals of the store, and the others read a record or value each. The same signals are connected
/// and as many values queued as by the pages, of a record one with the whole of it, and the values
/// are shown in the same controls.
void bindFloor(benchmark::State& state)
{
    prepare(false);
    const opening::Recipe recipe = opening::makeRecipe();
    const opening::Recipe bound = opening::makeRecipe(QStringLiteral("en"), true);
    const auto texts = opening::loadTexts();
    const auto isPage = [](const opening::RawPart& part) { return part.kind == "page"; };
    const auto pages =
        static_cast<std::size_t>(std::count_if(recipe.begin(), recipe.end(), isPage));
    const BindingCount count = countBinding();
    const std::size_t reads = readsOfPages.size();
    if (count.hops != pages + reads) {
        state.SkipWithError("the pages do not read what the floor reads");
    }
    BareThread thread;
    TestStore store;
    const auto makeUnbound = [&] {
        auto made = std::make_unique<BoundRaw>();
        made->raw = opening::makeRaw(recipe, *texts);
        made->shares.resize(count.calls);
        store.visitSignals([&made = *made](auto& signal) {
            const std::size_t value = made.signals_.size() % made.shares.size();
            made.signals_.emplace_back([&made, &signal, value] {
                return signal.connect([&made, value](const auto&...) { made.queue(value); });
            });
        });
        if (made->signals_.size() != count.connections) {
            state.SkipWithError("the pages do not follow each signal once");
        }
        made->connections.reserve(count.connections);
        for (std::size_t i = 0; i < bound.size(); ++i) {
            if (bound[i].value.isValid()) {
                made->shares[i % count.calls].emplace_back(made->raw.parts[i], bound[i].value);
            }
        }
        QApplication::processEvents();
        return made;
    };
    measure(state, makeUnbound, [&](std::unique_ptr<BoundRaw>& bare) {
        BoundRaw& made = *bare;
        std::size_t read = 0;
        std::size_t queued = 0;
        for (std::size_t page = 1; page <= pages; ++page) {
            thread.call([&] {
                while (made.connections.size() < page * made.signals_.size() / pages) {
                    made.connections.emplace_back(made.signals_[made.connections.size()]());
                }
                return 0;
            });
            for (; read < page * reads / pages; ++read) {
                readsOfPages[read](thread, store, made, queued++);
                while (queued < (read + 1) * count.calls / reads) {
                    made.queue(queued++);
                }
            }
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
    state.counters["hops"] = static_cast<double>(countBinding().hops);
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
