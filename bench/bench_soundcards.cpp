// The audio page at its largest: 20 mappings, and 16 devices of 32 cards each besides this machine.
// Each notification from its announcement until the page shows it; "longest" is the longest time in
// milliseconds for which it held the event loop, in any of the iterations, and "rebuilds" how many
// lists of combo boxes were made for it, those of new boxes included. The initial set until it is
// first seen and until the last box is made, which takes several turns of the loop; also with the
// cards of this machine alone. The floor is a page of as many raw controls in the same look, on
// which the same boxes are filled, made or hidden: of the same size and with the same texts, so
// that as many of them are seen and painted.

#include "mivohostkit/runtimethread.h"
#include "support/hostlanguage.h"
#include "support/teststore.h"
#include "support/uselook.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/audiosettingbox.h>
#include <mivowidgets/combobox.h>

#include <benchmark/benchmark.h>

#include <QtCore/QAbstractItemModel>
#include <QtCore/QSet>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <utility>

namespace {

using mivo::STSoundCardChangeInfo;
using mivo::settings::STDeviceSoundCards;
using mivo::settings::STSoundCardInfo;

constexpr int mappingCount = 20;
constexpr int deviceCount = 16;
constexpr int cardCount = 32;

std::string deviceName(int device)
{
    return device == 0 ? std::string() : "192.168.1." + std::to_string(100 + device);
}

std::string cardId(int card)
{
    return "alsa_output.usb-interface." + std::to_string(100 + card);
}

std::vector<STSoundCardInfo> cards(int count)
{
    std::vector<STSoundCardInfo> all;
    for (int card = 0; card < count; ++card) {
        all.push_back({cardId(card), "USB interface, output " + std::to_string(card), 2});
    }
    return all;
}

double timeOf(const std::function<void()>& what)
{
    const auto start = std::chrono::steady_clock::now();
    what();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The store, and the thread that it lives on.
class Mappings
{
public:
    explicit Mappings(int lastDevice = deviceCount)
    {
        useLook(mivo::style::Look::dark);
        useHostLanguage("en");
        runtime.call([this, lastDevice] {
            for (int device = 0; device <= lastDevice; ++device) {
                store.soundCards().setDeviceSoundCards(deviceName(device), "", cards(cardCount));
            }
            for (int mapping = 1; mapping <= mappingCount; ++mapping) {
                store.addSoundCardMappingRequested(velorn::mediadispatch::STSoundCardMappingInfo());
                for (int device = 0; device <= lastDevice; ++device) {
                    choose(static_cast<std::uint64_t>(mapping), device, mapping);
                }
            }
        });
    }

    /// On the runtime thread.
    void choose(std::uint64_t mapping, int device, int card)
    {
        store.changeSoundCardMappingRequested(STSoundCardChangeInfo{
            mapping,
            device == 0 ? mivo::SoundCardChangeLocalCard : mivo::SoundCardChangeClusterCard,
            {},
            {deviceName(device), cardId(card), {}, 2, 1}});
    }

    std::uint64_t lastMapping() { return store.getSoundCardMappings().mappings.back().id; }

    mivohost::RuntimeThread runtime;
    TestStore store;
};

class LargePage : public Mappings
{
public:
    explicit LargePage(int lastDevice = deviceCount) : Mappings(lastDevice)
    {
        makePage();
        runtime.call([this] { store.soundCards().announceMappings(); });
        finish();
    }

    /// How many lists have been made up to now.
    int countLists()
    {
        const auto combos = page->findChildren<mivo::widgets::ComboBox*>();
        for (auto* combo : combos) {
            if (!counted.contains(combo)) {
                counted.insert(combo);
                ++lists;
                QObject::connect(combo, &QObject::destroyed,
                                 [this, combo] { counted.remove(combo); });
                QObject::connect(combo->model(), &QAbstractItemModel::modelReset,
                                 [this] { ++lists; });
            }
        }
        return lists;
    }

    void makePage()
    {
        page = new mivo::settings::AudioSettingBox;
        page->setZRRuntime(&runtime);
        page->setSettings(&store);
        area.setWidget(page);
        area.setWidgetResizable(true);
        area.resize(1000, 700);
        area.show();
        settle();
    }

    static void settle() { QApplication::processEvents(); }
    /// Until all is laid out and painted, which may take more than one turn.
    static void settleWhole() { QApplication::processEvents(QEventLoop::AllEvents, 1000); }

    /// Until every mapping has all its boxes: how long that took, and its longest turn.
    std::pair<double, double> finish()
    {
        const auto known = runtime.call([this] { return store.getSoundCardMappings(); });
        std::pair<double, double> taken;
        do {
            const double turn = timeOf(settle);
            taken.first += turn;
            taken.second = std::max(taken.second, turn);
        } while (page->findChildren<mivo::widgets::ComboBox*>().size()
                 < known.devices.size() * known.mappings.size());
        return taken;
    }

    QSet<const QObject*> counted; // no property of theirs: the page looks at widgets that have one
    QScrollArea area;
    mivo::settings::AudioSettingBox* page = nullptr;
    int lists = 0;
};

/// Times `one` again and again, and undoes it by `other`.
void inTurns(benchmark::State& state, const std::function<double()>& one,
             const std::function<void()>& other)
{
    double longest = 0;
    for (auto _ : state) {
        const double time = one();
        longest = std::max(longest, time);
        state.SetIterationTime(time);
        other();
    }
    state.counters["longest"] = longest * 1000;
}

/// Runs on the runtime thread.
using Change = void (*)(Mappings& large);

void measure(benchmark::State& state, Change one, Change other)
{
    LargePage large;
    int rebuilds = 0;
    // The store's own work, saving included, is not the page's.
    const auto tell = [&large](Change change) { large.runtime.call([&] { change(large); }); };
    tell(other); // what is undone was done before
    large.finish();
    inTurns(
        state,
        [&] {
            tell(one);
            const int before = large.countLists();
            const double time = timeOf(LargePage::settleWhole);
            rebuilds += large.countLists() - before;
            return time;
        },
        [&] {
            tell(other);
            large.finish();
            LargePage::settleWhole(); // the last box is made, but neither laid out nor painted
        });
    state.counters["rebuilds"] = benchmark::Counter(rebuilds, benchmark::Counter::kAvgIterations);
}

/// A row of raw controls for each mapping.
class RawPage
{
public:
    RawPage()
    {
        for (const auto& card : cards(cardCount - mappingCount + 1)) { // the others are taken
            m_texts.append(QString::fromStdString(card.caption));
        }
    }

    void makePage()
    {
        auto* page = new QWidget;
        m_column = new QVBoxLayout(page);
        m_column->setContentsMargins(20, 24, 20, 24);
        m_column->setSpacing(12);
        m_area.setWidget(page);
        m_area.setWidgetResizable(true);
        m_area.resize(1000, 700);
        m_area.show();
        LargePage::settle();
    }

    void makeRows()
    {
        for (int mapping = 0; mapping < mappingCount; ++mapping) {
            makeRow();
        }
    }

    void makeRow()
    {
        auto* row = new QWidget;
        auto* layout = new QVBoxLayout(row);
        layout->setContentsMargins(12, 12, 12, 12);
        layout->setSpacing(12);
        auto* line = new QHBoxLayout;
        line->setSpacing(8);
        auto* name = new QLineEdit(QStringLiteral("Output %1").arg(m_rows.size() + 1));
        name->setFixedSize(240, 24);
        auto* remove = new QPushButton("Delete");
        remove->setFixedHeight(24);
        line->addWidget(new QLabel("Name"));
        line->addWidget(name);
        line->addStretch();
        line->addWidget(remove);
        layout->addLayout(line);
        auto* grid = new QGridLayout;
        grid->setSpacing(12);
        grid->setColumnStretch(3, 1);
        layout->addLayout(grid);
        m_rows.push_back({row, grid, {}});
        for (int device = 0; device <= deviceCount; ++device) {
            makeBox(m_rows.back());
        }
        m_column->addWidget(row);
    }

    void deleteRow()
    {
        delete m_rows.back().widget;
        m_rows.pop_back();
    }

    /// Its cards are free then: every other box offers one more.
    void deleteRowWithCards()
    {
        deleteRow();
        for (const auto& row : m_rows) {
            for (const auto& box : row.boxes) {
                box.second->insertItem(1, m_texts[1]);
            }
        }
    }

    void makeRowWithCards()
    {
        for (const auto& row : m_rows) {
            for (const auto& box : row.boxes) {
                box.second->removeItem(1);
            }
        }
        makeRow();
    }

    /// Fills the boxes of each device of which other cards are offered.
    void show(const QVector<STDeviceSoundCards>& devices)
    {
        for (int device = 0; device < devices.size(); ++device) {
            const auto& cards = devices[device].soundCards;
            auto& shown = m_shown[static_cast<std::size_t>(device)];
            const auto isSame = [](const STSoundCardInfo& one, const STSoundCardInfo& other) {
                return one == other && one.chosenIn == other.chosenIn;
            };
            if (std::equal(cards.begin(), cards.end(), shown.begin(), shown.end(), isSame)) {
                continue;
            }
            shown = cards;
            for (std::size_t row = 0; row < m_rows.size(); ++row) {
                fill(*m_rows[row].boxes[static_cast<std::size_t>(device)].second, cards, row + 1);
            }
        }
    }

    void hideBoxes() { setBoxesVisible(false); }
    void showBoxes() { setBoxesVisible(true); }

private:
    struct Row
    {
        QWidget* widget;
        QGridLayout* grid;
        std::vector<std::pair<QWidget*, QComboBox*>> boxes;
    };

    static void fill(QComboBox& box, const std::vector<STSoundCardInfo>& cards,
                     std::uint64_t mapping)
    {
        const QSignalBlocker blocker(box);
        QStringList texts{"None"};
        int chosen = 0;
        for (const STSoundCardInfo& card : cards) {
            if (card.chosenIn == mapping) {
                chosen = texts.size();
            }
            if (card.chosenIn == 0 || card.chosenIn == mapping) {
                texts.append(QString::fromStdString(card.caption));
            }
        }
        box.clear();
        box.addItems(texts);
        box.setCurrentIndex(chosen);
    }

    /// Those behind it close the gap, or make room.
    void setBoxesVisible(bool visible)
    {
        for (const auto& row : m_rows) {
            int place = changed;
            row.boxes[changed].first->setVisible(visible);
            for (std::size_t box = changed; box < row.boxes.size(); ++box) {
                if (box > changed || visible) {
                    row.grid->addWidget(row.boxes[box].first, place / 3, place % 3);
                    ++place;
                }
            }
        }
    }

    void makeBox(Row& row)
    {
        const int place = static_cast<int>(row.boxes.size());
        auto* widget = new QWidget;
        auto* column = new QVBoxLayout(widget);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(4);
        auto* label =
            new QLabel(place == 0 ? "This machine" : QString::fromStdString(deviceName(place)));
        label->setFixedSize(240, 20);
        auto* combo = new QComboBox;
        combo->setFixedSize(240, 26);
        combo->addItems(m_texts);
        combo->setCurrentIndex(1); // most mappings have a card on each device
        column->addWidget(label);
        column->addWidget(combo);
        row.grid->addWidget(widget, place / 3, place % 3);
        row.boxes.emplace_back(widget, combo);
    }

    QScrollArea m_area;
    static constexpr int changed = 3; // the device

    std::array<std::vector<STSoundCardInfo>, deviceCount + 1> m_shown; // of each device
    QStringList m_texts{"None"};
    QVBoxLayout* m_column = nullptr;
    std::vector<Row> m_rows;
};

void measureFloor(benchmark::State& state, void (RawPage::*one)(), void (RawPage::*other)())
{
    useLook(mivo::style::Look::dark);
    RawPage page;
    page.makePage();
    page.makeRows();
    (page.*other)();
    LargePage::settleWhole();
    inTurns(
        state,
        [&] {
            return timeOf([&] {
                (page.*one)();
                LargePage::settleWhole();
            });
        },
        [&] {
            (page.*other)();
            LargePage::settleWhole();
        });
}

/// A page that reads the store at each notification, as one has to that is to show what there is.
void measureFollowing(benchmark::State& state, Change one, Change other)
{
    Mappings all;
    RawPage page;
    page.makePage();
    page.makeRows();
    const auto read = [&] {
        page.show(all.runtime.call([&all] { return all.store.getSoundCardMappings(); }).devices);
    };
    std::atomic<bool> isAsked{false};
    const auto ask = [&](const auto&...) {
        if (!isAsked.exchange(true)) {
            const auto readOnce = [&] {
                isAsked = false;
                read();
            };
            QMetaObject::invokeMethod(qApp, readOnce, Qt::QueuedConnection);
        }
    };
    std::vector<sigslot::connection> connections;
    all.runtime.call([&] {
        connections.emplace_back(all.store.soundCardMappingChanged.connect(ask));
        connections.emplace_back(all.store.soundCardEnabled.connect(ask));
        connections.emplace_back(all.store.soundCardDisabled.connect(ask));
        connections.emplace_back(all.store.clusterNodeSoundCardsChanged.connect(ask));
    });
    const auto tell = [&all](Change change) { all.runtime.call([&] { change(all); }); };
    read();
    tell(other);
    LargePage::settleWhole();
    inTurns(
        state,
        [&] {
            tell(one);
            return timeOf(LargePage::settleWhole);
        },
        [&] {
            tell(other);
            LargePage::settleWhole();
        });
    all.runtime.call([&] {
        for (auto& connection : connections) {
            connection.disconnect();
        }
    });
}

void initialFloor(benchmark::State& state)
{
    useLook(mivo::style::Look::dark);
    std::optional<RawPage> page;
    inTurns(
        state,
        [&] {
            page.emplace();
            page->makePage();
            return timeOf([&] {
                page->makeRows();
                LargePage::settleWhole();
            });
        },
        [] {});
}

void initial(benchmark::State& state, int lastDevice, bool whole)
{
    LargePage large(lastDevice);
    double longest = 0;
    const int before = large.countLists();
    for (auto _ : state) {
        delete large.page;
        large.makePage();
        large.runtime.call([&] { large.store.soundCards().announceMappings(); });
        const double first = timeOf(LargePage::settle);
        const auto [rest, longestOfRest] = large.finish();
        state.SetIterationTime(whole ? first + rest : first);
        longest = std::max({longest, first, longestOfRest});
        large.countLists();
    }
    state.counters["rebuilds"] =
        benchmark::Counter(large.lists - before, benchmark::Counter::kAvgIterations);
    state.counters["longest"] = longest * 1000;
}

void setCards(Mappings& large, int count)
{
    large.store.soundCards().setDeviceSoundCards(deviceName(3), "", cards(count));
}

void chooseOther(Mappings& large)
{
    large.choose(7, 3, 27);
}
void chooseFirst(Mappings& large)
{
    large.choose(7, 3, 7);
}
void removeCard(Mappings& large)
{
    setCards(large, cardCount - 1);
}
void addCard(Mappings& large)
{
    setCards(large, cardCount);
}
void announceCluster(Mappings& large)
{
    large.store.clusterNodeSoundCardsChanged();
}
void doNothing(Mappings& /*large*/) {}
void removeDevice(Mappings& large)
{
    large.store.soundCards().removeDevice(deviceName(3));
}
void hideDevice(Mappings& large)
{
    large.store.soundCards().setDeviceVisible(deviceName(3), false);
}
void showDevice(Mappings& large)
{
    large.store.soundCards().setDeviceVisible(deviceName(3), true);
}
void addMapping(Mappings& large)
{
    large.store.addSoundCardMappingRequested(velorn::mediadispatch::STSoundCardMappingInfo());
}
void addMappingWithCards(Mappings& large)
{
    addMapping(large);
    for (int device = 0; device <= deviceCount; ++device) {
        large.choose(large.lastMapping(), device, mappingCount);
    }
}
void deleteMapping(Mappings& large)
{
    large.store.changeSoundCardMappingRequested(
        STSoundCardChangeInfo{large.lastMapping(), mivo::SoundCardChangeDeletion, {}, {}});
}

const bool added = [] {
    const struct
    {
        const char* name;
        Change one;
        Change other;
        void (RawPage::*raw)(); // null: the floor reads the store, too
        void (RawPage::*rawOther)();
    } changes[]{
        {"card_chosen", chooseOther, chooseFirst, nullptr, nullptr},
        {"card_gone", removeCard, addCard, nullptr, nullptr},
        {"card_back", addCard, removeCard, nullptr, nullptr},
        {"cluster", announceCluster, doNothing, nullptr, nullptr},
        {"device_gone", removeDevice, addCard, nullptr, nullptr},
        {"device_back", addCard, removeDevice, nullptr, nullptr},
        {"hidden", hideDevice, showDevice, &RawPage::hideBoxes, &RawPage::showBoxes},
        {"shown", showDevice, hideDevice, &RawPage::showBoxes, &RawPage::hideBoxes},
        {"mapping_added", addMapping, deleteMapping, &RawPage::makeRow, &RawPage::deleteRow},
        {"mapping_deleted", deleteMapping, addMappingWithCards, &RawPage::deleteRowWithCards,
         &RawPage::makeRowWithCards},
    };
    const auto add = [](const std::string& name, auto function, int iterations = 10) {
        benchmark::RegisterBenchmark(("soundcards_" + name).c_str(), function)
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime()
            ->Iterations(iterations);
    };
    constexpr int few = 2; // of what takes a second
    add("initial/floor", initialFloor, few);
    add(
        "initial/first_sight", [](benchmark::State& state) { initial(state, deviceCount, false); },
        few);
    add(
        "initial/ours", [](benchmark::State& state) { initial(state, deviceCount, true); }, few);
    add("initial_local/ours", [](benchmark::State& state) { initial(state, 0, true); });
    for (const auto& change : changes) {
        add(change.name + std::string("/floor"), [change](benchmark::State& state) {
            if (change.raw != nullptr) {
                measureFloor(state, change.raw, change.rawOther);
            } else {
                measureFollowing(state, change.one, change.other);
            }
        });
        add(change.name + std::string("/ours"),
            [change](benchmark::State& state) { measure(state, change.one, change.other); });
    }
    return true;
}();

} // namespace
