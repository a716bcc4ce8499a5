#pragma once

#include <mivoqutils/filetask.h>

#include <QtCore/QEventLoop>
#include <QtCore/QPointer>
#include <QtWidgets/QProgressDialog>

#include <chrono>
#include <optional>

// Folders may be on a drive that does not answer: they are touched on a thread of their own.

namespace mivo::settings {

/// Opens a dialog with a cancel button over the window of `page`. `key` is the text's.
QProgressDialog* showFolderProgress(QWidget* page, const char* key, const QString& folder);

/// Tells that the folder has not answered; it is closed when the page goes.
void tellNoAnswer(const QPointer<QWidget>& page, const QString& folder);

/// Runs `work`, which gives a value and owns all that it uses, on a thread of its own, and waits
/// for it in an event loop: after half a second with a progress dialog. Nothing when the user
/// cancels, when the page goes, and when there is no answer for 30 s, which is told. GUI thread.
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
                showFolderProgress(page, "CheckingFolder", folder); // goes with the page
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
