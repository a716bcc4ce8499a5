#include "peripherals/dmxservice.h"

#include "base/hostlog.h"
#include "peripherals/inputtap.h"

#include <mivoqutils/post.h>

#include <QtNetwork/QNetworkInterface>

#include <algorithm>
#include <charconv>

namespace mivohost {

using mivo::peripheralcontrol::SAddDMXInfo;

namespace {

constexpr int channels = 512;
constexpr std::uint8_t upperHalf = 128;
constexpr std::size_t mostSenders = 4;
constexpr qint64 senderGoneAfter = 10000; // ms; a sender repeats its levels every four seconds
constexpr int mostAnswers = 10;           // a second; consoles ask every three seconds

const std::string prefix = "DMX ";

/// Fills in the address of this machine in the sender's network.
void putPlace(ArtNetNode& node, const QHostAddress& sender)
{
    for (const QNetworkInterface& card : QNetworkInterface::allInterfaces()) {
        for (const QNetworkAddressEntry& entry : card.addressEntries()) {
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol
                && sender.isInSubnet(entry.ip(), entry.prefixLength())) {
                node.ipv4 = entry.ip().toIPv4Address();
                const QByteArray hardware =
                    QByteArray::fromHex(card.hardwareAddress().remove(':').toLatin1());
                std::copy_n(hardware.begin(), std::min<int>(hardware.size(), 6), node.hardware);
                return;
            }
        }
    }
}

} // namespace

DmxService::DmxService(BindingTable::Setup setup, std::uint16_t port)
    : BoundPeripheral(std::move(setup)), m_port(port),
      m_input({"DMX", true, [this] { read(); }, [this] { failed(m_input.failure()); }})
{}

bool DmxService::isControl(const std::string& text)
{
    int channel = 0;
    const char* const end = text.data() + text.size();
    return text.compare(0, prefix.size(), prefix) == 0 && text[prefix.size()] != '0'
           && std::from_chars(text.data() + prefix.size(), end, channel).ptr == end && channel >= 1
           && channel <= channels;
}

void DmxService::setInfo(const SAddDMXInfo& info)
{
    m_info = info;
    m_info.channelOffset = std::clamp(info.channelOffset, 0, channels);
    m_info.subnet = std::clamp(info.subnet, 0, 15);
    m_info.domain = std::clamp(info.domain, 0, 15);
    forgetSenders();
    if (m_info.enabled) {
        m_input.open(m_port);
    } else {
        m_input.close();
    }
    infoChanged(m_info);
}

void DmxService::setAddress(const QHostAddress& address)
{
    forgetSenders();
    m_input.setAddress(address);
}

void DmxService::forgetSenders()
{
    m_senders.clear();
    m_levels = {};
}

void DmxService::read()
{
    std::vector<int> rising;
    for (int i = 0; i < UdpInput::readAtOnce && m_input.socket().hasPendingDatagrams(); ++i) {
        const QNetworkDatagram received = m_input.receive();
        const QByteArray bytes = received.data();
        if (m_tap != nullptr && m_tap->isOpen() && received.isValid()) {
            m_tap->put(PeripheralDmx, received.senderAddress().toString(), bytes);
        }
        const auto datagram = parseArtNet(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                          static_cast<std::size_t>(bytes.size()));
        const bool isTaken =
            datagram.kind == ArtNetDatagram::dmx
                ? take(datagram, received.senderAddress(), rising)
                : datagram.kind == ArtNetDatagram::poll && answer(received.senderAddress());
        m_ignored += isTaken ? 0 : 1;
    }
    if (!rising.empty()) {
        // Queued: an action may open a dialog, and this slot would read nothing until it is closed.
        mivo::qutils::post(&m_input.socket(), [this, rising] {
            for (const int channel : rising) {
                use(prefix + std::to_string(channel), true, true);
            }
        });
    }
}

bool DmxService::isForThis(const ArtNetDatagram& datagram) const
{
    return datagram.kind == ArtNetDatagram::dmx && datagram.net == m_info.domain
           && datagram.subnet == m_info.subnet && datagram.universe == 0;
}

std::string DmxService::controlOf(const ArtNetDatagram& datagram, int channel) const
{
    return isForThis(datagram) && channel > m_info.channelOffset
               ? prefix + std::to_string(channel - m_info.channelOffset)
               : std::string();
}

bool DmxService::take(const ArtNetDatagram& datagram, const QHostAddress& sender,
                      std::vector<int>& rising)
{
    if (!isForThis(datagram)) {
        return false;
    }
    m_senders.erase(
        std::remove_if(m_senders.begin(), m_senders.end(),
                       [](const Sender& other) { return other.heard.hasExpired(senderGoneAfter); }),
        m_senders.end());
    auto known = std::find_if(m_senders.begin(), m_senders.end(),
                              [&sender](const Sender& other) { return other.address == sender; });
    const bool isNew = known == m_senders.end();
    if (isNew) {
        if (m_senders.size() == mostSenders) {
            return false;
        }
        known = m_senders.insert(known, Sender());
        known->address = sender;
    }
    known->heard.start();
    std::copy_n(datagram.levels, datagram.channels, known->levels.begin());
    const Levels before = m_levels;
    m_levels = {};
    for (const Sender& other : m_senders) {
        std::transform(m_levels.begin(), m_levels.end(), other.levels.begin(), m_levels.begin(),
                       [](std::uint8_t a, std::uint8_t b) { return std::max(a, b); });
    }
    for (auto i = static_cast<std::size_t>(m_info.channelOffset); i < m_levels.size(); ++i) {
        if (!isNew && before[i] < upperHalf && m_levels[i] >= upperHalf) {
            rising.push_back(static_cast<int>(i) - m_info.channelOffset + 1);
        }
    }
    return true;
}

bool DmxService::answer(const QHostAddress& poller)
{
    if (!m_answerTime.isValid() || m_answerTime.hasExpired(1000)) {
        m_answerTime.start();
        m_answers = 0;
    }
    if (m_answers == mostAnswers) {
        return false;
    }
    ++m_answers;
    ArtNetNode node;
    node.name = m_info.nodeName;
    node.net = m_info.domain;
    node.subnet = m_info.subnet;
    putPlace(node, poller);
    const auto reply = artNetPollReply(node);
    return m_input.socket().writeDatagram(reinterpret_cast<const char*>(reply.data()),
                                          static_cast<qint64>(reply.size()), poller, m_port)
           >= 0;
}

} // namespace mivohost
