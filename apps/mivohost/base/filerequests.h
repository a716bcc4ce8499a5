#pragma once

#include <mivoqutils/filetask.h>

#include <QtCore/QDir>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace mivohost {

/// Called with a path before it is touched, on the thread that does it; for tests, which can let it
/// hang.
using PathObserver = std::function<void(const QString& path)>;

/// Absolute and without detours, by the names alone: asking the file system may hang.
QString cleanPath(const QString& file);

/// Whether the system takes them for the same, by the names alone.
bool isSamePath(const QString& a, const QString& b);

/// What a file holds, or why it could not be read. Any thread but the GUI's and the runtime's.
struct FileContent
{
    std::string bytes;
    QString error; ///< a reason, empty where there is none
};
FileContent readFile(const QString& path, std::size_t mostBytes);

/// Writes a file of the user's; empty, or why it is as it was. Threads as above.
QString saveFile(const QString& path, const std::string& content);

/// Keeps `newest` and, of `others`, as many as make `kept` together; all are names of one form in
/// `folder`, with their times in them. By the names, as a copied folder has other file times; where
/// the clock was set back, what bears a later time than `newest` is the older. Threads as above.
void removeOlder(const QDir& folder, QStringList others, const QString& newest, int kept);

/// Which file it was and why, for reasonText(). Any thread.
QString fileProblem(const QString& path, const QString& reason);

/// Work on files that the operator chose, which may lie on a drive that does not answer: it runs on
/// threads of its own. GUI thread.
///
/// One file at a time is waited for, for 30 s or until cancel(). Work that nobody waits for any
/// more goes on, and until it ends there is no other work on the same file: the older content
/// could replace the newer one.
class FileRequests : public QObject
{
    Q_OBJECT

public:
    explicit FileRequests(PathObserver observer = {});
    ~FileRequests() override;

    struct Request
    {
        QString path;
        bool saves = false; ///< else it only reads
        /// Takes the reason why nobody waits: the file is in use, or did not answer.
        std::function<void(const QString& reason)> fail;
    };

    /// Runs `work` aside, then `done` with its result and with whether it is still waited for. Or
    /// calls `fail` at once, and nothing runs.
    template <typename Work, typename Done>
    void start(Request request, Work work, Done done)
    {
        const QString path = request.path;
        if (mivo::qutils::FileTask* task = begin(std::move(request))) {
            task->start(
                [work = std::move(work), path, observer = m_observer,
                 save = m_request.saves ? unfinishedSave() : nullptr] {
                    if (observer) {
                        observer(path);
                    }
                    return work();
                },
                [this, task, done = std::move(done)](auto result) {
                    const bool isWaitedFor = end(task);
                    done(std::move(result), isWaitedFor);
                });
        }
    }

    bool isWaiting() const { return m_waited != nullptr; }
    bool isSaving() const { return isWaiting() && m_request.saves; } ///< for what is written

    /// Nobody waits any longer, as after 30 s.
    void cancel();

    /// For an end of the program that cannot be put off: blocks until all that any of them writes
    /// is written, waited for or not. False after `timeout`.
    static bool finishSaves(std::chrono::milliseconds timeout);

signals:
    /// Whether one is waited for has changed.
    void waitingChanged();
    /// It has taken half a second: the operator is to see for what he waits. `key` is a text of the
    /// host's with a place for the path; both are empty when nobody waits any more.
    void slow(const QString& key, const QString& path);

private:
    mivo::qutils::FileTask* begin(Request request);
    bool end(mivo::qutils::FileTask* task);
    void stopWaiting();
    static std::shared_ptr<void> unfinishedSave(); // as long as it is held

    PathObserver m_observer;
    Request m_request;                          // the last one
    mivo::qutils::FileTask* m_waited = nullptr; // its task, while that is waited for
    std::vector<std::pair<mivo::qutils::FileTask*, QString>> m_tasks; // all that run, with paths
};

} // namespace mivohost
