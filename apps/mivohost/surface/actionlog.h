#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>

#include <map>
#include <string>

namespace mivohost {

/// Writes to the log which actions were carried out. What comes faster than one in 100 ms is
/// counted and written together, and what goes on for long has one line in three seconds: no sender
/// can push everything else out of the log. GUI thread.
class ActionLog
{
public:
    ActionLog();

    /// `name` says what was carried out; there are as many of them as there are actions. `control`
    /// is what triggered it, of any length, or empty.
    void add(const std::string& name, const std::string& control);

private:
    struct Entry
    {
        int count = 0;
        std::string control; // the last one
    };

    void write();

    std::map<std::string, Entry> m_waiting; // by name
    double m_lines;                         // how many may be written now
    QElapsedTimer m_written;
    QTimer m_pause;
};

} // namespace mivohost
