#pragma once

#include "base/filerequests.h"

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class Peripherals;

/// Exports all bindings, of keys and of devices, into a file, and imports those of a file.
///
/// GUI thread; what it borrows outlives it.
class BindingsTransfer : public QObject
{
    Q_OBJECT

public:
    BindingsTransfer(mivo::settings::ShortCutMgr& manager, Peripherals& peripherals);

    void exportTo(const QString& path);
    void importFrom(const QString& path);

    /// The file that is written or read. One that is not waited for any more is told as a failure,
    /// and is not imported when it is read.
    FileRequests& requests() { return m_requests; }

signals:
    /// A text's key and what is put into it, as MainWindow::showNotice().
    void failed(const QString& key, const QString& argument);
    /// The key of a text: a canceled export has been written after all.
    void told(const QString& key);

private:
    mivo::settings::ShortCutMgr& m_manager;
    Peripherals& m_peripherals;
    FileRequests m_requests;
};

} // namespace mivohost
