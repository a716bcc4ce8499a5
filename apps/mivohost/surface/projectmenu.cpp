#include "surface/projectmenu.h"

#include "base/hosttext.h"
#include "project/projectfile.h"
#include "surface/askforfile.h"
#include "surface/settingstransfer.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

namespace mivohost {

ProjectMenu::ProjectMenu(ProjectFile& project, SettingsTransfer& transfer, QMainWindow& window)
    : m_project(project), m_window(window)
{
    QMenu* menu = window.menuBar()->addMenu(QString());
    const auto add = [this, menu](const char* key, const QKeySequence& keys, auto slot) {
        QAction* action = menu->addAction(QString());
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, slot);
        m_actions.emplace_back(action, key);
    };
    add("NewProject", QKeySequence::New, [this] { leaveProject([this] { m_project.create(); }); });
    add("OpenProject", QKeySequence::Open, &ProjectMenu::openProject);
    m_recentMenu = menu->addMenu(QString());
    m_actions.emplace_back(m_recentMenu->menuAction(), "RecentProjects");
    add("SaveProject", QKeySequence::Save, [this] { saveProject(); });
    add("SaveProjectAs", QKeySequence(QStringLiteral("Ctrl+Shift+S")), [this] { saveProjectAs(); });
    menu->addSeparator();
    add("ExportSettings", {}, [&transfer] { transfer.chooseExport(); });
    add("ImportSettings", {}, [&transfer] { transfer.chooseImport(); });
    menu->addSeparator();
    add("Quit", QKeySequence(QStringLiteral("Ctrl+Q")), &ProjectMenu::quitChosen);
    m_actions.emplace_back(menu->menuAction(), "Project");
    connect(menu, &QMenu::aboutToShow, this, &ProjectMenu::fillRecentMenu);
    connect(menu, &QMenu::aboutToShow, &project, &ProjectFile::checkRecentFiles);
    connect(&project, &ProjectFile::recentFilesChecked, this, &ProjectMenu::fillRecentMenu);
    connect(&project, &ProjectFile::unsavedFound, this, &ProjectMenu::offerUnsaved);
}

void ProjectMenu::setTexts()
{
    for (const auto& [action, key] : m_actions) {
        action->setText(hostText(key));
    }
}

void ProjectMenu::fillRecentMenu()
{
    m_recentMenu->clear();
    int number = 0;
    for (const QString& file : m_project.recentFiles()) {
        const QString path = QDir::toNativeSeparators(file).replace('&', QLatin1String("&&"));
        const QAction* action =
            m_recentMenu->addAction(QStringLiteral("&%1  ").arg(++number) + path);
        connect(action, &QAction::triggered, this,
                [this, file] { leaveProject([this, file] { m_project.open(file); }); });
    }
    m_recentMenu->setEnabled(number > 0);
}

void ProjectMenu::openProject()
{
    leaveProject([this] {
        const QString file = askForProject(false);
        if (!file.isEmpty()) {
            m_project.open(file);
        }
    });
}

void ProjectMenu::saveProject(const std::function<void(bool)>& done)
{
    if (m_project.state().file.isEmpty()) {
        saveProjectAs(done);
    } else {
        m_project.save(done);
    }
}

void ProjectMenu::saveProjectAs(const std::function<void(bool)>& done)
{
    const QString file = askForProject(true);
    if (!file.isEmpty()) {
        m_project.saveAs(file, done);
    }
}

QString ProjectMenu::askForProject(bool saving)
{
    const QString suffix = QStringLiteral("mivo");
    const QString& file = m_project.state().file;
    return askForFile(&m_window, saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen,
                      hostText(saving ? "SaveProjectTitle" : "OpenProjectTitle"),
                      hostText("ProjectFiles"), {suffix},
                      file.isEmpty() ? QString() : QFileInfo(file).absolutePath(),
                      saving ? projectName() + '.' + suffix : QString());
}

void ProjectMenu::leaveProject(const std::function<void()>& then)
{
    m_project.refresh();
    if (!m_project.state().modified) {
        then();
        return;
    }
    QMessageBox question(QMessageBox::Question, QStringLiteral("mivohost"),
                         hostText("SaveQuestion").arg(projectName()), QMessageBox::NoButton,
                         &m_window);
    question.setTextFormat(Qt::PlainText);
    QPushButton* save = question.addButton(hostText("Save"), QMessageBox::AcceptRole);
    const QAbstractButton* drop =
        question.addButton(hostText("DoNotSave"), QMessageBox::DestructiveRole);
    QPushButton* cancel = question.addButton(hostText("Cancel"), QMessageBox::RejectRole);
    question.setDefaultButton(save);
    question.setEscapeButton(cancel);
    question.exec();
    if (question.clickedButton() == save) {
        saveProject([this, then](bool saved) {
            if (saved && !m_project.state().modified) {
                then();
            }
        });
    } else if (question.clickedButton() == drop) {
        then();
    }
}

void ProjectMenu::offerUnsaved(const QString& file)
{
    auto* question = new QMessageBox(QMessageBox::Question, QStringLiteral("mivohost"),
                                     hostText("UnsavedFound").arg(QDir::toNativeSeparators(file)),
                                     QMessageBox::NoButton, &m_window);
    question->setObjectName(QStringLiteral("unsavedFound"));
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setTextFormat(Qt::PlainText);
    QPushButton* open = question->addButton(hostText("OpenUnsaved"), QMessageBox::AcceptRole);
    QPushButton* leave =
        question->addButton(hostText("LeaveUnsaved"), QMessageBox::DestructiveRole);
    question->setDefaultButton(open);
    // As Escape and the window's close button: decides nothing.
    question->setEscapeButton(
        question->addButton(hostText("LaterUnsaved"), QMessageBox::RejectRole));
    connect(open, &QPushButton::clicked, &m_project, &ProjectFile::openUnsaved);
    connect(leave, &QPushButton::clicked, &m_project, &ProjectFile::forgetUnsaved);
    question->open(); // modal for this window, without blocking the event loop here
}

QString ProjectMenu::projectName() const
{
    const QString& file = m_project.state().file;
    return file.isEmpty() ? hostText("UnnamedProject") : QFileInfo(file).completeBaseName();
}

} // namespace mivohost
