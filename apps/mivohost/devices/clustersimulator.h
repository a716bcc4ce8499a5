#pragma once

#include "mivohostapi/soundcardrecords.h"

#include <cstdint>
#include <random>
#include <vector>

namespace mivohost {

class SoundCardMappings;

/// Simulated devices of a cluster: they join and leave, plug, unplug and rename their cards, hide
/// them, and have other cards than their partners. A seed gives the same sequence on every machine.
///
/// Runtime thread; the mappings must outlive it.
class ClusterSimulator
{
public:
    static constexpr int mostDevices = 250;

    /// No device is there yet. `devices` is 1 to mostDevices.
    ClusterSimulator(SoundCardMappings& mappings, int devices, std::uint32_t seed);

    /// Changes one of the devices at random and tells the mappings.
    void step();

    /// The devices that have joined, with their present cards, in the order of their numbers.
    std::vector<mivo::settings::STDeviceSoundCards> present() const;

private:
    struct Card
    {
        mivo::settings::STSoundCardInfo info;
        bool isPlugged = true;
    };

    struct Device
    {
        mivo::settings::STDeviceSoundCards info; // without its cards
        std::vector<Card> cards;
        bool isPresent = false;

        mivo::settings::STDeviceSoundCards now() const;
    };

    /// A random number from 0 to count - 1.
    std::size_t any(std::size_t count) { return m_random() % count; }

    SoundCardMappings& m_mappings;
    std::mt19937 m_random;
    std::vector<Device> m_devices;
    int m_renamed = 0;
};

} // namespace mivohost
