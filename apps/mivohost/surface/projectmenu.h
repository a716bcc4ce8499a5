#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include <functional>
#include <utility>
#include <vector>

class QAction;
class QMainWindow;
class QMenu;

namespace mivohost {

class ProjectFile;
class SettingsTransfer;

/// The menu of the project, and what the operator is asked before it is opened, saved or left. GUI
/// thread; all that it is given must outlive it.
class ProjectMenu : public QObject
{
    Q_OBJECT

public:
    ProjectMenu(ProjectFile& project, SettingsTransfer& transfer, QMainWindow& window);

    void setTexts();

    QString projectName() const;

    /// Asks whether to save what is not saved, and calls `then` unless the user wants to stay: at
    /// once, or when the project has been saved.
    void leaveProject(const std::function<void()>& then);

signals:
    void quitChosen();

private:
    void fillRecentMenu();
    void openProject();
    /// Saves, asking for a file where the project has none; `done` is told how it ended.
    void saveProject(const std::function<void(bool)>& done = {});
    void saveProjectAs(const std::function<void(bool)>& done = {});
    /// The path that the user chose; empty when none. `saving` says for which of the two.
    QString askForProject(bool saving);
    void offerUnsaved(const QString& file);

    ProjectFile& m_project;
    QMainWindow& m_window;
    QMenu* m_recentMenu;
    std::vector<std::pair<QAction*, const char*>> m_actions; // with the keys of their texts
};

} // namespace mivohost
