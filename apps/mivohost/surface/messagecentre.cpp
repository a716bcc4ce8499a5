#include "surface/messagecentre.h"

#include "qvspdlog/spdlogapplication.h"

#include <iterator>
#include <utility>

namespace mivohost {

void MessageCentre::post(int kind, const std::string& text)
{
    QV::SpdlogApplication::instance().logger()->log(
        kind == 2 ? spdlog::level::warn : spdlog::level::info, "message: {}", text);
    Message message{kind, QString::fromStdString(text), QDateTime::currentDateTime()};
    const std::lock_guard lock(m_mutex);
    // One call for all that is posted until it comes: a flood takes no more room than this.
    if (m_posted.empty()) {
        QMetaObject::invokeMethod(this, &MessageCentre::take, Qt::QueuedConnection);
    }
    m_posted.push_front(std::move(message));
    if (m_posted.size() > kept) {
        m_posted.pop_back();
    }
}

void MessageCentre::take()
{
    std::deque<Message> fresh;
    {
        const std::lock_guard lock(m_mutex);
        fresh.swap(m_posted);
    }
    m_messages.insert(m_messages.begin(), std::make_move_iterator(fresh.begin()),
                      std::make_move_iterator(fresh.end()));
    if (m_messages.size() > kept) {
        m_messages.resize(kept);
    }
    emit posted(static_cast<int>(fresh.size()));
}

} // namespace mivohost
