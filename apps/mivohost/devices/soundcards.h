#pragma once

#include "devices/devicenames.h"
#include "mivohostapi/soundcardrecords.h"

#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <memory>
#include <string>
#include <vector>

namespace mivohost {

struct ListedCard;

/// What a person calls the card of that name.
std::string soundCardCaption(const std::string& name);

/// The sound cards of this machine, as a separate process lists them at intervals: see
/// listSoundCards(). The process is started again when it ends, fails or is silent for too long;
/// until it reports something else, the cards stay as they were. GUI thread; only the destructor
/// blocks, up to a second, until the process, which it kills, has ended.
///
/// A card that is plugged in or out is noticed within some three seconds. When the sound server is
/// restarted, its cards stay if it is back within that time; else they disappear, and come back,
/// within the life of one such process.
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
    /// The first list has arrived, or it differs from the one before: in cards or their channels.
    void changed();

private:
    void start();
    void read();
    void restart(bool hasFailed, const QString& reason);
    void take(std::vector<ListedCard> listed);

    const Lister m_lister;
    std::unique_ptr<QProcess> m_process = std::make_unique<QProcess>();
    QTimer m_timer; // ends a process that is silent too long, and the pause before the next start
    bool m_hasReported = false;
    bool m_isWarned = false;
    bool m_hasServer = false;
    DeviceNames m_ids;
    DeviceNames m_captions;
    bool m_isKnown = false;
    std::vector<mivo::settings::STSoundCardInfo> m_cards;
};

} // namespace mivohost
