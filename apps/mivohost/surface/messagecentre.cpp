#include "surface/messagecentre.h"

#include "base/hostlog.h"

#include <mivoqutils/post.h>

#include <QtCore/QDateTime>

#include <iterator>

namespace mivohost {

namespace {

void append(std::deque<MessageCentre::STMsgInfo>& messages,
            std::deque<MessageCentre::STMsgInfo>&& more)
{
    messages.insert(messages.end(), std::make_move_iterator(more.begin()),
                    std::make_move_iterator(more.end()));
    while (messages.size() > MessageCentre::kept) {
        messages.pop_front();
    }
}

} // namespace

void MessageCentre::postMessage(const STMsgInfo& message)
{
    const bool isWarning = message.kind == velorn::msgcenter::MsgWarning;
    hostLog()->log(isWarning ? spdlog::level::warn : spdlog::level::info, "message: {}",
                   message.text);
    STMsgInfo timed = message;
    if (timed.time == 0) {
        timed.time = QDateTime::currentMSecsSinceEpoch();
    }
    const std::lock_guard lock(m_mutex);
    // One call for all that come until it is carried out: a flood takes no more room than this.
    if (m_posted.empty()) {
        mivo::qutils::post(this, [this] { take(); });
    }
    append(m_posted, {std::move(timed)});
}

void MessageCentre::take()
{
    std::deque<STMsgInfo> fresh;
    {
        const std::lock_guard lock(m_mutex);
        fresh.swap(m_posted);
    }
    const int count = static_cast<int>(fresh.size());
    append(m_messages, std::move(fresh));
    emit posted(count);
}

} // namespace mivohost
