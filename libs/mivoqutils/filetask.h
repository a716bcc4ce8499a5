#pragma once

#include "mivoqutils/export.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace mivo::qutils {

/// Work on files that may hang, as on a network drive that is gone. It runs on a thread of its own,
/// one piece of work at a time; the object's thread never waits for it longer than it wants to.
///
/// A thread that hangs in the system cannot be ended. When the object is destroyed the thread goes
/// on alone, and its result is dropped. So `work` must own all that it uses, and `done` may be
/// destroyed on that thread.
class MIVOQUTILS_EXPORT FileTask : public QObject
{
    Q_OBJECT

    using Completion = std::function<void()>;

public:
    /// `deadline`: when overdue() is emitted.
    explicit FileTask(std::chrono::milliseconds deadline = std::chrono::seconds(30),
                      QObject* parent = nullptr);
    ~FileTask() override;

    /// Runs `work` on a thread of its own, then `done` with its result on the object's thread, from
    /// the event loop or from waitFor(). False, and nothing runs, while there is other work.
    template <typename Work, typename Done>
    bool start(Work work, Done done)
    {
        return run([work = std::move(work), done = std::move(done)]() mutable -> Completion {
            if constexpr (std::is_void_v<std::invoke_result_t<Work>>) {
                work();
                return std::move(done);
            } else {
                auto result = std::make_shared<std::invoke_result_t<Work>>(work());
                return [result, done = std::move(done)]() mutable { done(std::move(*result)); };
            }
        });
    }

    /// Until `done` is called.
    bool isRunning() const { return m_shared != nullptr; }

    /// Blocks until the work has ended, and calls `done`; false after `timeout`.
    bool waitFor(std::chrono::milliseconds timeout);
    /// The same, while events are handled, except the user's input, which is held back.
    bool waitInLoop(std::chrono::milliseconds timeout);

Q_SIGNALS:
    /// The work runs for half a second: time to show that something is going on.
    void slow();
    /// The deadline has passed. The work goes on, and its result is still delivered.
    void overdue();
    /// The work has ended; `done` is called next.
    void ended();

private:
    struct Shared;

    bool run(std::function<Completion()> work);
    void complete();

    std::shared_ptr<Shared> m_shared; // with the thread; null while nothing runs
    std::chrono::milliseconds m_deadline;
    QTimer m_slow{this};
    QTimer m_overdue{this};
};

} // namespace mivo::qutils
