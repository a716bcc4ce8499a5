#pragma once

#include <mivoqutils/filetask.h>
#include <mivoqutils/folders.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtWidgets/QProgressDialog>

#include <atomic>
#include <functional>
#include <memory>

namespace mivo::settings {

/// Clears a folder on a thread of its own. Over the window of `page`, a progress dialog with a
/// cancel button shows up when it takes longer than half a second, unless the page is hidden then.
/// GUI thread.
class FolderClearing : public QObject
{
    Q_OBJECT

public:
    /// Called on that thread; must own all that it uses, since it may outlive this object. It ends
    /// when `goOn` returns false.
    using Clear = std::function<qutils::ClearResult(const QString& folder,
                                                    const std::function<bool(int removed)>& goOn)>;

    FolderClearing(const QString& folder, QWidget* page, const Clear& clear);

    /// Cancels without waiting: the thread ends after the entry that it is removing.
    ~FolderClearing() override;

    /// Where the page was hidden when the progress was to show up: shows it now.
    void showProgress();

    bool isRunning() const { return m_task.isRunning(); }
    /// By its user; it may still run, and a folder that hangs keeps it running.
    bool isCancelled() const { return *m_cancelled; }

signals:
    void finished(const mivo::qutils::ClearResult& result);

private:
    const QString m_folder;
    const QPointer<QWidget> m_page;
    qutils::FileTask m_task;
    bool m_isSlow = false;
    std::shared_ptr<std::atomic<bool>> m_cancelled = std::make_shared<std::atomic<bool>>(false);
    QPointer<QProgressDialog> m_progress;
};

} // namespace mivo::settings
