// The audio page at its largest: 20 mappings, and 16 devices of 32 cards each besides this machine.
// Each notification from its announcement until the page shows it; "rebuilds" is how many lists of
// combo boxes were made anew for it. The floor is a page of as many raw controls in the same look,
// on which the same boxes are filled, made or hidden. Nothing changes on it when nothing of a
// cluster has, so that has no floor.

#include "runtime/runtimethread.h"
#include "support/hostlanguage.h"
#include "support/teststore.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/audiosettingbox.h>
#include <mivowidgets/combobox.h>

#include <benchmark/benchmark.h>

#include <QtCore/QAbstractItemModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

#include <functional>

namespace {

using mivo::STSoundCardChangeInfo;
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

class LargePage
{
public:
    LargePage()
    {
        qApp->setStyleSheet(mivohost::hostStyleSheet());
        useHostLanguage("en");
        runtime.call([this] {
            for (int device = 0; device <= deviceCount; ++device) {
                store.soundCards().setDeviceSoundCards(deviceName(device), "", cards(cardCount));
            }
            for (int mapping = 1; mapping <= mappingCount; ++mapping) {
                store.addSoundCardMappingRequested(velorn::mediadispatch::STSoundCardMappingInfo());
                for (int device = 0; device <= deviceCount; ++device) {
                    choose(static_cast<std::uint64_t>(mapping), device, mapping);
                }
            }
        });
        makePage();
        runtime.call([this] { store.soundCards().announceMappings(); });
        settle();
        const auto combos = page->findChildren<mivo::widgets::ComboBox*>();
        for (const auto* combo : combos) {
            QObject::connect(combo->model(), &QAbstractItemModel::modelReset,
                             [this] { ++rebuilds; });
        }
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

    /// On the runtime thread.
    void choose(std::uint64_t mapping, int device, int card)
    {
        store.changeSoundCardMappingRequested(STSoundCardChangeInfo{
            mapping,
            device == 0 ? mivo::SoundCardChangeLocalCard : mivo::SoundCardChangeClusterCard,
            {},
            {deviceName(device), cardId(card), {}, 2, 1}});
    }

    static void settle() { QApplication::processEvents(); }

    mivohost::RuntimeThread runtime;
    TestStore store;
    QScrollArea area;
    mivo::settings::AudioSettingBox* page = nullptr;
    int rebuilds = 0;
};

/// Applies `change(page, odd)` again and again; every second time it undoes the first.
void measure(benchmark::State& state,
             const std::function<void(mivohost::SoundCardMappings&, LargePage&, bool)>& change)
{
    LargePage large;
    bool odd = false;
    large.rebuilds = 0;
    for (auto _ : state) {
        state.PauseTiming();
        odd = !odd;
        // The store's own work, saving included, is not the page's.
        large.runtime.call([&] { change(large.store.soundCards(), large, odd); });
        state.ResumeTiming();
        LargePage::settle();
    }
    state.counters["rebuilds"] =
        benchmark::Counter(large.rebuilds, benchmark::Counter::kAvgIterations);
}

/// A row of raw controls for each mapping.
class RawPage
{
public:
    RawPage()
    {
        for (const auto& card : cards(cardCount)) {
            m_texts.append(QString::fromStdString(card.caption));
        }
    }

    void make()
    {
        auto* page = new QWidget;
        m_column = new QVBoxLayout(page);
        for (int mapping = 0; mapping < mappingCount; ++mapping) {
            makeRow();
        }
        m_area.setWidget(page);
        m_area.setWidgetResizable(true);
        m_area.resize(1000, 700);
        m_area.show();
    }

    void makeRow()
    {
        auto* row = new QWidget;
        auto* layout = new QVBoxLayout(row);
        auto* line = new QHBoxLayout;
        line->addWidget(new QLabel("Name"));
        line->addWidget(new QLineEdit);
        line->addWidget(new QPushButton("Delete"));
        layout->addLayout(line);
        auto* grid = new QGridLayout;
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

    void fillBoxes()
    {
        for (const auto& row : m_rows) {
            row.boxes[3].second->clear();
            row.boxes[3].second->addItems(m_texts);
        }
    }

    void makeBoxes()
    {
        for (auto& row : m_rows) {
            makeBox(row);
        }
    }

    void deleteBoxes()
    {
        for (auto& row : m_rows) {
            delete row.boxes.back().first;
            row.boxes.pop_back();
        }
    }

    void showBoxes(bool visible)
    {
        for (const auto& row : m_rows) {
            row.boxes[3].first->setVisible(visible);
        }
    }

private:
    struct Row
    {
        QWidget* widget;
        QGridLayout* grid;
        std::vector<std::pair<QWidget*, QComboBox*>> boxes;
    };

    void makeBox(Row& row)
    {
        auto* widget = new QWidget;
        auto* column = new QVBoxLayout(widget);
        auto* combo = new QComboBox;
        combo->addItems(m_texts);
        column->addWidget(new QLabel("Device"));
        column->addWidget(combo);
        const int place = static_cast<int>(row.boxes.size());
        row.grid->addWidget(widget, place / 3, place % 3);
        row.boxes.emplace_back(widget, combo);
    }

    QScrollArea m_area;
    QStringList m_texts;
    QVBoxLayout* m_column = nullptr;
    std::vector<Row> m_rows;
};

/// Changes a raw page again and again; every second time it undoes the first.
void measureFloor(benchmark::State& state, const std::function<void(RawPage&, bool)>& change)
{
    qApp->setStyleSheet(mivohost::hostStyleSheet());
    RawPage page;
    page.make();
    LargePage::settle();
    bool odd = false;
    for (auto _ : state) {
        odd = !odd;
        change(page, odd);
        LargePage::settle();
    }
}

void initialFloor(benchmark::State& state)
{
    qApp->setStyleSheet(mivohost::hostStyleSheet());
    for (auto _ : state) {
        state.PauseTiming();
        {
            RawPage page;
            state.ResumeTiming();
            page.make();
            LargePage::settle();
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

void fillFloor(benchmark::State& state)
{
    measureFloor(state, [](RawPage& page, bool /*odd*/) { page.fillBoxes(); });
}

void deviceFloor(benchmark::State& state)
{
    measureFloor(state, [](RawPage& page, bool odd) {
        if (odd) {
            page.deleteBoxes();
        } else {
            page.makeBoxes();
        }
    });
}

void visibilityFloor(benchmark::State& state)
{
    measureFloor(state, [](RawPage& page, bool odd) { page.showBoxes(!odd); });
}

void mappingFloor(benchmark::State& state)
{
    measureFloor(state, [](RawPage& page, bool odd) {
        if (odd) {
            page.deleteRow();
        } else {
            page.makeRow();
        }
    });
}

void initial(benchmark::State& state)
{
    LargePage large;
    for (auto _ : state) {
        state.PauseTiming();
        delete large.page;
        large.makePage();
        large.runtime.call([&] { large.store.soundCards().announceMappings(); });
        state.ResumeTiming();
        LargePage::settle();
    }
}

void cardChosen(benchmark::State& state)
{
    measure(state,
            [](auto& /*cards*/, LargePage& large, bool odd) { large.choose(7, 3, odd ? 27 : 7); });
}

void cardGone(benchmark::State& state)
{
    measure(state, [](auto& known, LargePage& /*large*/, bool odd) {
        known.setDeviceSoundCards(deviceName(3), "", cards(odd ? cardCount - 1 : cardCount));
    });
}

void clusterChanged(benchmark::State& state)
{
    measure(state, [](auto& /*cards*/, LargePage& large, bool /*odd*/) {
        large.store.clusterNodeSoundCardsChanged();
    });
}

void deviceComesAndGoes(benchmark::State& state)
{
    measure(state, [](auto& known, LargePage& /*large*/, bool odd) {
        if (odd) {
            known.removeDevice(deviceName(3));
        } else {
            known.setDeviceSoundCards(deviceName(3), "", cards(cardCount));
        }
    });
}

void visibility(benchmark::State& state)
{
    measure(state, [](auto& known, LargePage& /*large*/, bool odd) {
        known.setDeviceVisible(deviceName(3), !odd);
    });
}

void mappingAddedAndDeleted(benchmark::State& state)
{
    std::uint64_t last = mappingCount;
    measure(state, [&last](auto& /*cards*/, LargePage& large, bool odd) {
        if (odd) {
            large.store.changeSoundCardMappingRequested(
                STSoundCardChangeInfo{last++, mivo::SoundCardChangeDeletion, {}, {}});
        } else {
            large.store.addSoundCardMappingRequested(
                velorn::mediadispatch::STSoundCardMappingInfo());
        }
    });
}

const bool added = [] {
    const struct
    {
        const char* name;
        void (*function)(benchmark::State&);
    } all[]{{"initial/floor", initialFloor},
            {"initial/ours", initial},
            {"card/floor", fillFloor},
            {"card/ours", cardChosen},
            {"gone/floor", fillFloor},
            {"gone/ours", cardGone},
            {"cluster/ours", clusterChanged},
            {"device/floor", deviceFloor},
            {"device/ours", deviceComesAndGoes},
            {"visible/floor", visibilityFloor},
            {"visible/ours", visibility},
            {"mapping/floor", mappingFloor},
            {"mapping/ours", mappingAddedAndDeleted}};
    for (const auto& [name, function] : all) {
        benchmark::RegisterBenchmark((std::string("soundcards_") + name).c_str(), function)
            ->Unit(benchmark::kMillisecond)
            ->Iterations(function == initial || function == initialFloor ? 10 : 20);
    }
    return true;
}();

} // namespace
