#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <deque>
#include <mutex>

namespace mivohost {

/// What was posted, and when.
struct Message
{
    int kind = 0;
    QString text;
    QDateTime time;
};

/// Collects the messages that are posted to the operator, and keeps the last hundred.
///
/// Lives on the GUI thread; post() may be called on any thread while it lives.
class MessageCentre : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t kept = 100;

    /// The first one is the newest. GUI thread, as the signal.
    const std::deque<Message>& messages() const { return m_messages; }

    void post(int kind, const std::string& text);

signals:
    /// So many of the messages are new.
    void posted(int count);

private:
    void take();

    std::mutex m_mutex;
    std::deque<Message> m_posted; // not taken yet, the newest first
    std::deque<Message> m_messages;
};

} // namespace mivohost
