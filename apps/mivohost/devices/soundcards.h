#pragma once

#include "devices/devicenames.h"
#include "mivohostapi/soundcardrecords.h"

#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <string>
#include <vector>

namespace mivohost {

struct ListedCard;

/// What a person calls the card of that name.
std::string soundCardCaption(const std::string& name);

/// The sound cards of this machine, as a process tells that lists them again and again: see
/// listSoundCards(). It is renewed when it ends, and also when it fails or says nothing for too
/// long; until it tells otherwise, the cards stay as they were. GUI thread; never blocks it but for
/// the end of that process, which is killed.
///
/// A card that comes or goes is noticed within some three seconds. When the sound server is
/// restarted, its cards stay if it is back within that time; else they go within the life of one
/// lister, and come back likewise.
class SoundCards : public QObject
{
    Q_OBJECT

public:
    struct Lister
    {
        QString program;
        QStringList arguments;
        int longestSilence = 15000; // milliseconds
    };

    explicit SoundCards(Lister lister);
    ~SoundCards() override;

    /// By their ids, which stay the same when a card goes and comes back.
    const std::vector<mivo::settings::STSoundCardInfo>& cards() const { return m_cards; }

signals:
    /// It is known for the first time which cards there are; cards appeared, vanished, or have
    /// another number of channels.
    void changed();

private:
    void start();
    void read();
    void restart(bool hasFailed, const QString& reason);
    void take(std::vector<ListedCard> listed);

    const Lister m_lister;
    QProcess m_process;
    QTimer m_timer; // runs out when the process is silent too long, or is to be started again
    bool m_hasSpoken = false;
    bool m_isWarned = false;
    bool m_hasServer = false;
    DeviceNames m_ids;
    DeviceNames m_captions;
    bool m_isKnown = false;
    std::vector<mivo::settings::STSoundCardInfo> m_cards;
};

} // namespace mivohost
