#pragma once

#include "mivohostapi/imsgcentermgr.h"

#include <QtCore/QObject>

#include <cstddef>
#include <deque>
#include <mutex>

namespace mivohost {

/// Collects the messages to the operator, keeps the last hundred of them, and logs them all.
///
/// Lives on the GUI thread; postMessage() may be called on any thread while it lives.
class MessageCentre : public QObject, public velorn::msgcenter::IMsgCenterMgr
{
    Q_OBJECT

public:
    using STMsgInfo = velorn::msgcenter::STMsgInfo;

    static constexpr std::size_t kept = 100;

    void postMessage(const STMsgInfo& message) override;

    /// In the order of their posting, each with its time. GUI thread, as the signal.
    const std::deque<STMsgInfo>& messages() const { return m_messages; }

signals:
    /// The last `count` messages are new.
    void posted(int count);

private:
    void take();

    std::mutex m_mutex;
    std::deque<STMsgInfo> m_posted; // not yet moved to the list by the GUI thread
    std::deque<STMsgInfo> m_messages;
};

} // namespace mivohost
