#include "devices/clustersimulator.h"

#include "base/hostlog.h"
#include "mivohostkit/soundcardmappings.h"

#include <string>

namespace mivohost {

ClusterSimulator::ClusterSimulator(SoundCardMappings& mappings, int devices, std::uint32_t seed)
    : m_mappings(mappings), m_random(seed)
{
    for (int number = 1; number <= devices; ++number) {
        Device device;
        device.info.device = "10.0.0." + std::to_string(number);
        device.info.caption = "Simulated " + std::to_string(number);
        const std::size_t cards = 1 + any(4);
        for (std::size_t card = 1; card <= cards; ++card) {
            const std::string name = std::to_string(card);
            const auto channels = static_cast<std::uint32_t>(2 + 2 * any(4));
            device.cards.push_back({{"card-" + name, "Card " + name, channels}});
        }
        m_devices.push_back(std::move(device));
    }
}

void ClusterSimulator::step()
{
    Device& device = m_devices[any(m_devices.size())];
    Card& card = device.cards[any(device.cards.size())];
    auto& info = device.info;
    const std::size_t what = any(8);
    const auto logger = hostLog();
    if (!device.isPresent) {
        device.isPresent = true;
        info.visible = true;
        logger->info("{} comes", info.caption);
    } else if (what == 0) {
        device.isPresent = false;
        logger->info("{} goes", info.caption);
        m_mappings.removeDevice(info.device);
        return;
    } else if (what == 1) {
        logger->info("{} has other cards than its partner", info.caption);
        m_mappings.reportMismatch(
            {any(2) == 0, info.device, std::to_string(device.now().soundCards.size())});
        return;
    } else if (what == 2) {
        info.visible = !info.visible;
        logger->info("{} {} its cards", info.caption, info.visible ? "shows" : "hides");
        m_mappings.setDeviceVisible(info.device, info.visible);
        return;
    } else if (what < 6) {
        card.isPlugged = !card.isPlugged;
        logger->info("{} {} {}", info.caption, card.isPlugged ? "plugs" : "unplugs",
                     card.info.caption);
    } else {
        const std::string before = card.info.caption;
        card.info.caption = "Renamed " + std::to_string(++m_renamed);
        logger->info("{} renames {} to {}", info.caption, before, card.info.caption);
    }
    m_mappings.setDeviceSoundCards(info.device, info.caption, device.now().soundCards);
}

std::vector<mivo::settings::STDeviceSoundCards> ClusterSimulator::present() const
{
    std::vector<mivo::settings::STDeviceSoundCards> all;
    for (const Device& device : m_devices) {
        if (device.isPresent) {
            all.push_back(device.now());
        }
    }
    return all;
}

mivo::settings::STDeviceSoundCards ClusterSimulator::Device::now() const
{
    auto all = info;
    for (const Card& card : cards) {
        if (card.isPlugged) {
            all.soundCards.push_back(card.info);
        }
    }
    return all;
}

} // namespace mivohost
