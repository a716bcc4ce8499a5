#include "surface/bindingstransfer.h"

#include "base/hosttext.h"
#include "peripherals/bindingsfile.h"

#include <mivoqutils/filetask.h>
#include <zrcutils/nocachefile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace mivohost {

using mivo::qutils::FileTask;

namespace {

constexpr std::size_t mostBytes = 64 * 1024 * 1024; // of a file to be imported

struct ReadFile
{
    std::string content;
    QString error;
};

ReadFile readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {{}, file.errorString()};
    }
    return {file.read(mostBytes + 1).toStdString(), {}};
}

} // namespace

BindingsTransfer::BindingsTransfer(mivo::settings::ShortCutMgr& manager, Peripherals& peripherals,
                                   QWidget* window)
    : m_manager(manager), m_peripherals(peripherals), m_window(window)
{}

template <typename Work, typename Done>
void BindingsTransfer::run(const char* progressKey, const QString& path, std::function<void()> fail,
                           Work work, Done done)
{
    if (isWaiting() || m_paths.contains(path)) {
        fail();
        return;
    }
    auto* task = new FileTask(std::chrono::seconds(30), this);
    m_task = task;
    m_fail = std::move(fail);
    m_paths.append(path);
    connect(task, &FileTask::slow, this, [this, task, progressKey, path] {
        if (task != m_task) {
            return;
        }
        m_progress = new QProgressDialog(m_window);
        m_progress->setWindowModality(Qt::WindowModal);
        m_progress->setRange(0, 0); // nobody knows how long it takes
        m_progress->setLabelText(hostText(progressKey).arg(QDir::toNativeSeparators(path)));
        m_progress->setCancelButtonText(hostText("Cancel"));
        connect(m_progress, &QProgressDialog::canceled, this, &BindingsTransfer::cancel);
        m_progress->show();
    });
    connect(task, &FileTask::overdue, this, [this, task] {
        if (task == m_task) {
            cancel();
        }
    });
    task->start(std::move(work), [this, task, path, done](auto result) {
        task->deleteLater();
        m_paths.removeOne(path);
        const bool isWaitedFor = task == m_task;
        if (isWaitedFor) {
            stopWaiting();
        }
        done(std::move(result), isWaitedFor);
    });
    emit waitingChanged();
}

void BindingsTransfer::stopWaiting()
{
    m_task = nullptr;
    if (m_progress) {
        m_progress->disconnect(this); // closing it is no cancel
        m_progress->deleteLater();
        m_progress->hide();
    }
    emit waitingChanged();
}

void BindingsTransfer::cancel()
{
    if (isWaiting()) {
        stopWaiting();
        m_fail();
    }
}

void BindingsTransfer::exportTo(const QString& path)
{
    const auto fail = [this, path] {
        emit failed(QStringLiteral("ShortcutsNotExported"), QDir::toNativeSeparators(path));
    };
    run(
        "SavingProject", path, fail,
        [path = path.toStdString(), content = exportedBindings(m_manager, m_peripherals)] {
            std::error_code error;
            return NoCacheFile::saveToFile(path, content, error, NoCacheFile::Access::umask);
        },
        [this, fail](bool isWritten, bool isWaitedFor) {
            if (isWaitedFor && !isWritten) {
                fail();
            } else if (!isWaitedFor && isWritten) {
                emit told(QStringLiteral("ShortcutsExportedLate"));
            }
        });
}

void BindingsTransfer::importFrom(const QString& path)
{
    const auto fail = [this](const QString& reason) {
        emit failed(QStringLiteral("ShortcutsNotImported"), reason);
    };
    run(
        "OpeningProject", path, [fail] { fail(reasonText(QStringLiteral("no answer"))); },
        [path] { return readFile(path); },
        [this, fail](const ReadFile& file, bool isWaitedFor) {
            if (!isWaitedFor) {
                return;
            }
            QString problem = file.error;
            if (file.content.size() > mostBytes) {
                problem = hostText("FileTooLarge");
            } else if (problem.isEmpty()) {
                problem = importBindings(file.content, m_manager, m_peripherals);
            }
            if (!problem.isEmpty()) {
                fail(problem);
            }
            emit waitingChanged();
        });
}

} // namespace mivohost
