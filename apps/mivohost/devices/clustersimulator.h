#pragma once

#include "mivohostapi/soundcardrecords.h"

#include <cstdint>
#include <random>
#include <vector>

namespace mivohost {

class SoundCardMappings;

/// Devices of a cluster that are not there: they come and go, plug, unplug and rename their cards,
/// hide them, and have others than their partners. The same seed plays the same on every machine.
///
/// Runtime thread; what it is to tell must outlive it.
class ClusterSimulator
{
public:
    static constexpr int mostDevices = 250;

    /// No device is there yet. `devices` is 1 to mostDevices.
    ClusterSimulator(SoundCardMappings& told, int devices, std::uint32_t seed);

    /// Lets the next thing happen to one of the devices.
    void step();

    /// The devices that are there, with the cards that they have, in the order of their numbers.
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

    /// 0 to count - 1, each as likely as the others but for next to nothing.
    std::size_t any(std::size_t count) { return m_random() % count; }

    SoundCardMappings& m_told;
    std::mt19937 m_random;
    std::vector<Device> m_devices;
    int m_renamed = 0;
};

} // namespace mivohost
