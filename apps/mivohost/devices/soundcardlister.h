#pragma once

#include <optional>
#include <string>
#include <vector>

class QByteArray;

namespace mivohost {

/// Something to play on, as Qt Multimedia lists it.
struct ListedCard
{
    std::string realm; ///< the plugin that lists it: "default" is the system's sound server
    std::string name;
    int channels = 0;

    friend bool operator==(const ListedCard& a, const ListedCard& b)
    {
        return a.realm == b.realm && a.name == b.name && a.channels == b.channels;
    }
};

/// The sound cards among what is listed: those of the sound server, or where it has none the
/// machine's own. What stands for no card of its own is left out.
std::vector<ListedCard> cardsAmong(const std::vector<ListedCard>& listed);

/// The cards as one line of JSON with its line feed, and back; nothing for any other line.
QByteArray toLine(const std::vector<ListedCard>& cards);
std::optional<std::vector<ListedCard>> fromLine(const QByteArray& line);

/// Runs in a process of its own, under a QCoreApplication: lists the machine's sound cards `looks`
/// times, `interval` milliseconds apart, and writes toLine() to the standard output each time.
/// Returns the exit code.
///
/// In a process of its own, because the back ends of Qt Multimedia may block for any time, and
/// because they never try a sound server again that has refused a connection once: only a new
/// process does.
int listSoundCards(int looks = 10, int interval = 2000);

} // namespace mivohost
