#pragma once

#include <QtCore/QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace mivohost {

/// Work for the thread on which this lives, from any other: carried out by the event loop, in the
/// order in which it was posted. What is left when this goes, which nobody else uses by then, is
/// dropped.
///
/// The work itself never passes through Qt's queue, whose order ThreadSanitizer does not see.
class WorkQueue : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    void post(std::function<void()> work);

private slots:
    void carryOut();

private:
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_work;
};

} // namespace mivohost
