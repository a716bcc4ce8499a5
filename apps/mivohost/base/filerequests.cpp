#include "base/filerequests.h"

#include <zrcutils/nocachefile.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>

namespace mivohost {

using mivo::qutils::FileTask;

QString cleanPath(const QString& file)
{
    return QDir::cleanPath(QFileInfo(file).absoluteFilePath());
}

bool isSamePath(const QString& a, const QString& b)
{
#ifdef Q_OS_WIN
    return cleanPath(a).compare(cleanPath(b), Qt::CaseInsensitive) == 0;
#else
    return cleanPath(a) == cleanPath(b);
#endif
}

FileContent readFile(const QString& path, std::size_t mostBytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {{}, file.errorString()};
    }
    const QByteArray content = file.read(static_cast<qint64>(mostBytes) + 1);
    if (file.error() != QFileDevice::NoError) {
        return {{}, file.errorString()};
    }
    if (static_cast<std::size_t>(content.size()) > mostBytes) {
        return {{}, QStringLiteral("the file is too large")};
    }
    return {content.toStdString(), {}};
}

QString saveFile(const QString& path, const std::string& content)
{
    std::error_code error;
    NoCacheFile::saveToFile(path.toStdString(), content, error, NoCacheFile::Access::umask);
    return error ? qt_error_string(error.value()) : QString();
}

void removeOlder(const QDir& folder, QStringList others, const QString& newest, int kept)
{
    others.removeAll(newest);
    std::sort(others.begin(), others.end());
    std::rotate(others.begin(), std::upper_bound(others.begin(), others.end(), newest),
                others.end());
    while (!others.isEmpty() && others.size() >= kept) {
        QFile::remove(folder.filePath(others.takeFirst()));
    }
}

QString fileProblem(const QString& path, const QString& reason)
{
    return QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), reason);
}

namespace {

struct Saves
{
    std::mutex mutex;
    std::condition_variable finished;
    int unfinished = 0;
};

/// Never destroyed: a thread that hangs may outlive everything.
Saves& saves()
{
    static auto& all = *new Saves;
    return all;
}

} // namespace

FileRequests::FileRequests(PathObserver observer) : m_observer(std::move(observer)) {}

FileRequests::~FileRequests() = default;

FileTask* FileRequests::begin(Request request)
{
    const bool isInUse =
        isWaiting() || std::any_of(m_tasks.begin(), m_tasks.end(), [&request](const auto& other) {
            return isSamePath(other.second, request.path);
        });
    if (isInUse) {
        request.fail(QStringLiteral("a file is still being opened or saved"));
        return nullptr;
    }
    auto* task = new FileTask(std::chrono::seconds(30), this);
    connect(task, &FileTask::slow, this, [this, task] {
        if (task == m_waited) {
            emit slow(QLatin1String(m_request.saves ? "SavingProject" : "OpeningProject"),
                      m_request.path);
        }
    });
    connect(task, &FileTask::overdue, this, [this, task] {
        if (task == m_waited) {
            cancel();
        }
    });
    m_tasks.emplace_back(task, request.path);
    m_request = std::move(request);
    m_waited = task;
    emit waitingChanged();
    return task;
}

bool FileRequests::end(FileTask* task)
{
    task->deleteLater();
    m_tasks.erase(std::find_if(m_tasks.begin(), m_tasks.end(),
                               [task](const auto& other) { return other.first == task; }));
    const bool isWaitedFor = task == m_waited;
    if (isWaitedFor) {
        stopWaiting();
    }
    return isWaitedFor;
}

void FileRequests::stopWaiting()
{
    m_waited = nullptr;
    emit slow({}, {});
    emit waitingChanged();
}

void FileRequests::cancel()
{
    if (isWaiting()) {
        const auto fail = std::move(m_request.fail);
        stopWaiting();
        fail(QStringLiteral("no answer"));
    }
}

std::shared_ptr<void> FileRequests::unfinishedSave()
{
    const std::lock_guard lock(saves().mutex);
    ++saves().unfinished;
    return {&saves(), [](Saves* all) {
                const std::lock_guard ending(all->mutex);
                --all->unfinished;
                all->finished.notify_all();
            }};
}

bool FileRequests::finishSaves(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(saves().mutex);
    return saves().finished.wait_for(lock, timeout, [] { return saves().unfinished == 0; });
}

} // namespace mivohost
