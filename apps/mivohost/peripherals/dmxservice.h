#pragma once

#include "peripherals/artnet.h"
#include "peripherals/bindingtable.h"
#include "peripherals/udpinput.h"

#include <QtCore/QElapsedTimer>
#include <QtNetwork/QHostAddress>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace mivohost {

class InputTap;

/// DMX over Art-Net: universe 0 of a net ("domain") and subnet. GUI thread, all signals too.
///
/// "DMX 1" is the first channel behind the channel offset. A channel triggers when its level goes
/// up through the middle, from at most 127 to at least 128; an action that waits for a control
/// takes the first channel that does. Of several senders (at most four) the highest level holds;
/// the first levels of a sender trigger nothing.
///
/// Polls are answered, so that consoles see the node. All other datagrams are ignored and counted.
class DmxService : public BoundPeripheral<mivo::peripheralcontrol::DmxPeripheral>
{
public:
    /// Starts disabled. `port` is the port of Art-Net, also of the other nodes.
    explicit DmxService(BindingTable::Setup setup, std::uint16_t port = artNetPort);

    static bool isControl(const std::string& text);

    /// Numbers outside of their ranges are taken as the nearest ones. When the port cannot be
    /// opened there is no input; the settings stay, and it is tried again.
    void setInfo(const mivo::peripheralcontrol::SAddDMXInfo& info) override;
    mivo::peripheralcontrol::SAddDMXInfo info() const override { return m_info; }
    std::string failure() const override { return m_input.failure(); }
    const QString& problem() const { return m_input.problem(); } ///< see UdpInput
    /// See UdpInput. Broadcasts that come by the card with that address are received. All senders
    /// are new then, as after a sleep, when their levels may have changed unheard.
    void setAddress(const QHostAddress& address);
    /// Gets every datagram that comes in from now on; borrowed.
    void setTap(InputTap& tap) { m_tap = &tap; }

    /// The control that a channel of a datagram of levels is, 1 to 512; empty when it is none of
    /// this input's.
    std::string controlOf(const ArtNetDatagram& datagram, int channel) const;

    /// Datagrams that came and were neither levels for this input nor a poll that was answered.
    std::size_t ignored() const { return m_ignored; }

private:
    using Levels = std::array<std::uint8_t, 512>;
    struct Sender
    {
        QHostAddress address;
        QElapsedTimer heard;
        Levels levels{};
    };

    void forgetSenders();
    void read();
    bool isForThis(const ArtNetDatagram& datagram) const;
    bool take(const ArtNetDatagram& datagram, const QHostAddress& sender, std::vector<int>& rising);
    bool answer(const QHostAddress& poller);

    const std::uint16_t m_port;
    mivo::peripheralcontrol::SAddDMXInfo m_info;
    std::size_t m_ignored = 0;
    InputTap* m_tap = nullptr;
    std::vector<Sender> m_senders;
    Levels m_levels{}; // the highest of all senders
    QElapsedTimer m_answerTime;
    int m_answers = 0;
    UdpInput m_input;
};

} // namespace mivohost
