#include "devices/soundcards.h"

#include "base/hostlog.h"
#include "devices/listerprocess.h"
#include "devices/soundcardlister.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <regex>
#include <utility>

namespace mivohost {

using mivo::settings::STSoundCardInfo;

namespace {

constexpr int pauseAfterFailure = 2000; // milliseconds

void logChanges(const std::vector<STSoundCardInfo>& before, const std::vector<STSoundCardInfo>& now)
{
    const auto logger = hostLog();
    for (const STSoundCardInfo& card : before) {
        if (std::find(now.begin(), now.end(), card) == now.end()) {
            logger->info("sound card gone: {}", card.caption);
        }
    }
    for (const STSoundCardInfo& card : now) {
        if (std::find(before.begin(), before.end(), card) == before.end()) {
            logger->info("sound card there: {} ({} channels)", card.caption, card.channels);
        }
    }
}

} // namespace

std::string soundCardCaption(const std::string& name)
{
    // As PulseAudio and ALSA name the cards that they find by themselves; any other name was given
    // by a person.
    static const std::regex usb(R"(alsa_output\.usb-(.+?)(?:-\d\d)?\.([a-z][a-z0-9-]*)(?:\.\d+)?)");
    static const std::regex server(R"(alsa_output\.(.+))");
    static const std::regex own("hw:CARD=([^,]+)(?:,DEV=(\\d+))?");
    std::smatch part;
    if (std::regex_match(name, part, usb)) {
        std::string device = part[1];
        std::replace(device.begin(), device.end(), '_', ' ');
        return device + " (" + part[2].str() + ')';
    }
    if (std::regex_match(name, part, own)) {
        return part[1].str() + (part[2].matched ? ' ' + part[2].str() : "");
    }
    return std::regex_match(name, part, server) ? part[1].str() : name;
}

SoundCards::SoundCards(Lister lister) : m_lister(std::move(lister))
{
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setStandardErrorFile(QProcess::nullDevice()); // ALSA is talkative
    m_timer.setSingleShot(true);
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this, &SoundCards::read);
    connect(m_process.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this](int code, QProcess::ExitStatus status) {
                read();
                restart(code != 0 || status != QProcess::NormalExit || !m_hasReported,
                        QStringLiteral("exit code %1").arg(code));
            });
    connect(m_process.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            restart(true, m_process->errorString());
        }
    });
    connect(&m_timer, &QTimer::timeout, this,
            [this] { m_process->state() == QProcess::NotRunning ? start() : m_process->kill(); });
    m_timer.start(0); // behind the first frame, with which it would share the processor
}

SoundCards::~SoundCards()
{
    m_process->disconnect(this);
    endLister(m_process);
}

void SoundCards::start()
{
    m_hasReported = false;
    m_timer.start(m_lister.longestSilence);
    m_process->start(m_lister.program, m_lister.arguments, QIODevice::ReadOnly);
}

void SoundCards::read()
{
    while (m_process->canReadLine()) {
        if (auto listed = fromLine(m_process->readLine())) {
            m_hasReported = true;
            m_isWarned = false;
            m_timer.start(m_lister.longestSilence);
            take(*std::move(listed));
        }
    }
}

void SoundCards::restart(bool hasFailed, const QString& reason)
{
    if (hasFailed && !std::exchange(m_isWarned, true)) {
        hostLog()->warn("no list of sound cards: {}", reason.toStdString());
    }
    m_timer.start(hasFailed ? pauseAfterFailure : 0);
}

void SoundCards::take(std::vector<ListedCard> listed)
{
    // Where there was a server once, the machine's own cards are those that it does not offer now.
    const auto isOwn = [](const ListedCard& card) { return card.realm != "default"; };
    m_hasServer = m_hasServer || !std::all_of(listed.begin(), listed.end(), isOwn);
    if (m_hasServer) {
        listed.erase(std::remove_if(listed.begin(), listed.end(), isOwn), listed.end());
    }

    std::stable_sort(listed.begin(), listed.end(),
                     [](const auto& a, const auto& b) { return a.name < b.name; });

    std::vector<ListedDevice> devices;
    for (const ListedCard& card : listed) {
        devices.push_back({card.name, card.name});
    }
    const auto ids = m_ids.update(devices);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        devices[i] = {ids[i], soundCardCaption(listed[i].name)};
    }
    const auto captions = m_captions.update(devices);
    std::vector<STSoundCardInfo> cards;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        cards.push_back({ids[i], captions[i], static_cast<std::uint32_t>(listed[i].channels)});
    }
    if (!std::exchange(m_isKnown, true) || !(cards == m_cards)) {
        logChanges(m_cards, cards);
        m_cards = std::move(cards);
        emit changed();
    }
}

} // namespace mivohost
