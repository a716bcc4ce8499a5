// The audio page at its largest: 20 mappings, and 16 devices of 32 cards each besides this machine.
// Each notification from its announcement until the page shows it; "rebuilds" is how many lists of
// combo boxes were made anew for it. The floor is one raw combo box that is filled with as many
// items.

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
#include <QtWidgets/QScrollArea>

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

void floorFill(benchmark::State& state)
{
    QComboBox combo;
    QStringList texts;
    for (const auto& card : cards(cardCount)) {
        texts.append(QString::fromStdString(card.caption));
    }
    for (auto _ : state) {
        combo.clear();
        combo.addItems(texts);
    }
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

BENCHMARK(floorFill)->Name("soundcards/floor")->Unit(benchmark::kMillisecond);
BENCHMARK(initial)->Name("soundcards/initial")->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(cardChosen)->Name("soundcards/card")->Unit(benchmark::kMillisecond)->Iterations(40);
BENCHMARK(cardGone)->Name("soundcards/gone")->Unit(benchmark::kMillisecond)->Iterations(40);
BENCHMARK(clusterChanged)
    ->Name("soundcards/cluster")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(40);
BENCHMARK(deviceComesAndGoes)
    ->Name("soundcards/device")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
BENCHMARK(visibility)->Name("soundcards/visible")->Unit(benchmark::kMillisecond)->Iterations(40);
BENCHMARK(mappingAddedAndDeleted)
    ->Name("soundcards/mapping")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);

} // namespace
