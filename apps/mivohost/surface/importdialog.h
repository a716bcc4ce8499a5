#pragma once

#include "mivohostkit/settingsfile.h"

#include <QtWidgets/QDialog>

#include <map>

class QPushButton;
class QTreeWidget;

namespace mivohost {

/// Shows what a file of settings would change, to be chosen one by one, and what cannot be taken.
/// At first all is chosen but what belongs to this machine. It changes nothing itself. GUI thread.
class ImportDialog : public QDialog
{
    Q_OBJECT

public:
    ImportDialog(const SettingsFile& file, const SettingsFile::Plan& plan, QWidget* parent);

    std::map<SettingsFile::Key, QVariant> chosen() const;

private:
    void addChanges(const std::vector<SettingsFile::Change>& changes);

    QTreeWidget* m_changes;
    QPushButton* m_accept = nullptr;
};

} // namespace mivohost
