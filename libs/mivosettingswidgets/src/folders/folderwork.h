#pragma once

#include <mivoqutils/filetask.h>

#include <QtCore/QEventLoop>
#include <QtCore/QPointer>
#include <QtWidgets/QProgressDialog>

#include <chrono>
#include <optional>

// Folders may be on a drive that does not answer: they are touched on a thread of their own.

namespace mivo::settings {

/// Opens a progress dialog with a cancel button over the window of `page`. `key` names its text.
QProgressDialog* showFolderProgress(QWidget* page, const char* key, const QString& folder);

/// Shows a tip that the folder has not answered; it is closed when the page is destroyed.
void tellNoAnswer(const QPointer<QWidget>& page, const QString& folder);

/// Runs `work` on a thread of its own and waits for its result in an event loop, after half a
/// second with a progress dialog. `work` must own all that it uses: it may outlive this call.
/// Nothing when the user cancels, when the page is destroyed, and when there is no answer for 30 s;
/// a tip then says so. GUI thread.
template <typename Work>
auto askFolder(const QPointer<QWidget>& page, const QString& folder, Work work)
{
    std::optional<std::invoke_result_t<Work>> result;
    bool overdue = false;
    {
        qutils::FileTask task;
        task.start(std::move(work), [&result](auto answer) { result = std::move(answer); });
        if (!task.waitInLoop(std::chrono::milliseconds(500)) && page) {
            QEventLoop loop;
            const QPointer<QProgressDialog> progress =
                showFolderProgress(page, "CheckingFolder", folder); // a child of the page
            QObject::connect(&task, &qutils::FileTask::ended, &loop, &QEventLoop::quit);
            QObject::connect(progress, &QProgressDialog::canceled, &loop, &QEventLoop::quit);
            QObject::connect(progress, &QObject::destroyed, &loop, &QEventLoop::quit);
            QObject::connect(&task, &qutils::FileTask::overdue, &loop, [&overdue, &loop] {
                overdue = true;
                loop.quit();
            });
            loop.exec();
            delete progress;
        }
    }
    if (overdue && page) {
        tellNoAnswer(page, folder);
    }
    return page ? result : std::nullopt;
}

} // namespace mivo::settings
