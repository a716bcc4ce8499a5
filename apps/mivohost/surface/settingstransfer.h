#pragma once

#include "base/filerequests.h"
#include "mivohostkit/settingsfile.h"

#include <functional>
#include <set>

class QWidget;

namespace mivohost {

class RuntimeThread;
class SettingsStore;

/// Exports settings into a file that the operator chooses, and imports those of a file, once the
/// operator has seen what changes and has chosen. GUI thread; what it borrows outlives it.
class SettingsTransfer : public QObject
{
    Q_OBJECT

public:
    /// Its dialogs are over `window`.
    SettingsTransfer(RuntimeThread& runtime, SettingsStore& store, QWidget* window);

    /// The file that is written or read. One that is not waited for any more is told as a failure,
    /// and is not imported when it is read.
    FileRequests& requests() { return m_requests; }

    /// Asks which sections and which file.
    void chooseExport();
    void exportTo(const QString& path, const std::set<SettingsFile::Section>& sections);

    /// Writes all settings into a new file of the program's own, of which the newest ten stay.
    /// `kept` is called with the file, or with why there is none.
    void keepAll(const std::function<void(const QString& file, const QString& error)>& kept);

    /// Asks which file.
    void chooseImport();
    void importFrom(const QString& path);
    /// Shows what the settings of a file would change.
    void offer(const SettingsFile& file);

signals:
    /// A text's key and what is put into it.
    void failed(const QString& key, const QString& argument);
    void told(const QString& key, const QString& argument);

    /// Settings have been imported.
    void imported();

private:
    QString askForSettings(bool saving);

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    QWidget* m_window;
    FileRequests m_requests;
};

} // namespace mivohost
