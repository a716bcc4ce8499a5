#pragma once

#include <mivoqutils/folders.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtWidgets/QProgressDialog>

#include <atomic>
#include <functional>
#include <thread>

namespace mivo::settings {

/// Clears a folder on a thread of its own. Over the window of `page`, a progress dialog with a
/// cancel button shows up when it takes longer than half a second. GUI thread.
class FolderClearing : public QObject
{
    Q_OBJECT

public:
    using Clear = std::function<qutils::ClearResult(const QString& folder,
                                                    const std::function<bool(int removed)>& goOn)>;

    FolderClearing(const QString& folder, QWidget* page, const Clear& clear);

    /// Cancels, and waits until the entry at hand is done.
    ~FolderClearing() override;

    bool isRunning() const { return m_thread.joinable(); }

    /// Valid when finished() is emitted.
    const qutils::ClearResult& result() const { return m_result; }

signals:
    void finished();

private slots:
    void finish();

private:
    void showProgress(const QString& folder, QWidget* page);

    qutils::ClearResult m_result; // the thread's until it is joined
    std::atomic<bool> m_cancelled{false};
    QPointer<QProgressDialog> m_progress;
    std::thread m_thread;
};

} // namespace mivo::settings
