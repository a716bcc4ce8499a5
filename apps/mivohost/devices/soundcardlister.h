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

/// A line that tells of cards, with its end; and what such a line tells, if it is one.
QByteArray toLine(const std::vector<ListedCard>& cards);
std::optional<std::vector<ListedCard>> fromLine(const QByteArray& line);

/// The work of a process of its own, under a QCoreApplication: looks so often at the machine's
/// sound cards, so many milliseconds apart, and writes a line to the standard output each time.
/// Returns the exit code.
///
/// It is a process because the back ends of Qt Multimedia cannot be had otherwise: they may block
/// for as long as they like, and a connection to the sound server that was refused once is never
/// tried again. So nobody waits for this process, and it is to be renewed.
int listSoundCards(int looks = 10, int interval = 2000);

} // namespace mivohost
