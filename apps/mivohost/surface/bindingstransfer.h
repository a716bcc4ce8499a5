#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtWidgets/QProgressDialog>

#include <functional>

namespace mivo::qutils {
class FileTask;
}

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class Peripherals;

/// Exports all bindings, of keys and of devices, into a file, and imports those of a file.
///
/// The operator chose the file, so it may lie on a drive that does not answer: it is touched on a
/// thread of its own. After half a second a dialog over `window` offers to cancel, and after 30 s
/// nobody waits any longer; both are told as a failure. GUI thread; what it borrows outlives it.
class BindingsTransfer : public QObject
{
    Q_OBJECT

public:
    BindingsTransfer(mivo::settings::ShortCutMgr& manager, Peripherals& peripherals,
                     QWidget* window);

    void exportTo(const QString& path);
    void importFrom(const QString& path);

    /// Whether an export or import is waited for. There is one at a time.
    bool isWaiting() const { return m_task != nullptr; }
    /// Nobody waits any longer. A file that is read then is not imported.
    void cancel();

signals:
    void waitingChanged();
    /// A text's key and what is put into it, as MainWindow::showNotice().
    void failed(const QString& key, const QString& argument);
    /// The key of a text: a canceled export has been written after all.
    void told(const QString& key);

private:
    /// Runs `work` on the file; `done` gets its result, and whether it is still waited for.
    template <typename Work, typename Done>
    void run(const char* progressKey, const QString& path, std::function<void()> fail, Work work,
             Done done);
    void stopWaiting();

    mivo::settings::ShortCutMgr& m_manager;
    Peripherals& m_peripherals;
    QWidget* m_window;
    mivo::qutils::FileTask* m_task = nullptr; // the one that is waited for
    std::function<void()> m_fail;             // tells that nobody waits for it any longer
    QPointer<QProgressDialog> m_progress;
    QStringList m_paths; // of all tasks, also of canceled ones
};

} // namespace mivohost
