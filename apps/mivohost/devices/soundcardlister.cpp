#include "devices/soundcardlister.h"

#include "devices/listerprocess.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTimer>
#include <QtMultimedia/QAudioDeviceInfo>

#include <algorithm>
#include <functional>
#include <iterator>

namespace mivohost {

namespace {

constexpr const char* serverRealm = "default";

bool startsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

bool isCard(const ListedCard& listed)
{
    static const std::string monitor = ".monitor"; // what plays, to be recorded
    const std::string& name = listed.name;
    if (name.empty() || name == "auto_null" // the server's stand-in for no card at all
        || (name.size() >= monitor.size()
            && name.compare(name.size() - monitor.size(), monitor.size(), monitor) == 0)) {
        return false;
    }
    // ALSA lists each card a dozen times over, and converters besides.
    return listed.realm != "alsa" || startsWith(name, "hw:");
}

std::vector<ListedCard> look()
{
    std::vector<ListedCard> listed;
    for (const auto& info : QAudioDeviceInfo::availableDevices(QAudio::AudioOutput)) {
        const bool isOfServer = info.realm() == QLatin1String(serverRealm);
        // Without the server a card counts as stereo: to ask it opens it, and that waits until
        // nobody else plays.
        const int channels = isOfServer ? std::max(info.preferredFormat().channelCount(), 1) : 2;
        listed.push_back({info.realm().toStdString(), info.deviceName().toStdString(), channels});
    }
    return cardsAmong(listed);
}

} // namespace

std::vector<ListedCard> cardsAmong(const std::vector<ListedCard>& listed)
{
    std::vector<ListedCard> cards;
    std::copy_if(listed.begin(), listed.end(), std::back_inserter(cards), isCard);
    const auto isOfServer = [](const ListedCard& card) { return card.realm == serverRealm; };
    if (std::any_of(cards.begin(), cards.end(), isOfServer)) {
        cards.erase(std::remove_if(cards.begin(), cards.end(), std::not_fn(isOfServer)),
                    cards.end());
    }
    return cards;
}

QByteArray toLine(const std::vector<ListedCard>& cards)
{
    QJsonArray array;
    for (const ListedCard& card : cards) {
        array.append(QJsonObject{{QStringLiteral("realm"), QString::fromStdString(card.realm)},
                                 {QStringLiteral("name"), QString::fromStdString(card.name)},
                                 {QStringLiteral("channels"), card.channels}});
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<std::vector<ListedCard>> fromLine(const QByteArray& line)
{
    const auto document = QJsonDocument::fromJson(line);
    if (!document.isArray()) {
        return std::nullopt;
    }
    std::vector<ListedCard> cards;
    for (const auto& value : document.array()) {
        const QJsonObject card = value.toObject();
        cards.push_back({card.value(QLatin1String("realm")).toString().toStdString(),
                         card.value(QLatin1String("name")).toString().toStdString(),
                         card.value(QLatin1String("channels")).toInt()});
    }
    return cards;
}

int listSoundCards(int looks, int interval)
{
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&timer, &looks, interval] {
        const int code = writeLine(toLine(look()));
        if (code != 0 || --looks <= 0) {
            QCoreApplication::exit(code);
        }
        timer.setInterval(interval);
    });
    timer.start(0);
    return QCoreApplication::exec();
}

} // namespace mivohost
