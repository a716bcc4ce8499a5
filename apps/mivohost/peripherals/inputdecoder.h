#pragma once

#include "peripherals/inputtap.h"

#include <QtCore/QHash>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace mivohost {

class Peripherals;

/// One message of an input, with what it is bound to.
struct ReceivedInput
{
    InputMessage message;   ///< of a bundle of OSC, one of its messages
    std::string action;     ///< the path of the action that it is bound to, or empty
    bool isRelease = false; ///< it is the end of what triggers the action, and triggers nothing
    int channel = 0;        ///< of DMX: the one to name, 1 to 512, or 0
    int others = 0;         ///< of DMX: how many more channels changed

    /// In the language in force.
    QString words() const;
    /// From 0 to 1; -1 when the message has none.
    double level() const;
};

/// Takes what services have put into their tap apart. GUI thread; `peripherals` must outlive it.
class InputDecoder
{
public:
    explicit InputDecoder(Peripherals& peripherals) : m_peripherals(peripherals) {}

    /// Adds what a message consists of: nothing for levels of DMX that only repeat those before.
    void decode(const InputMessage& message, std::vector<ReceivedInput>& inputs);

    /// The next levels of each sender are its first ones.
    void forgetLevels() { m_levels.clear(); }

private:
    using Levels = std::array<std::uint8_t, 512>;

    void decodeMidi(const InputMessage& message, std::vector<ReceivedInput>& inputs);
    void decodeOsc(const InputMessage& message, std::vector<ReceivedInput>& inputs);
    void decodeDmx(const InputMessage& message, std::vector<ReceivedInput>& inputs);

    Peripherals& m_peripherals;
    QHash<QString, Levels> m_levels; // the last ones, by sender and universe
};

} // namespace mivohost
