#pragma once

#include "mivohostapi/iprogramdispatch.h"

#include <mivowidgets/pushbutton.h>

#include <QtWidgets/QMenu>

#include <memory>
#include <vector>

namespace mivo::settings {

/// What the program dispatcher knows, in the form in which it travels to the GUI thread.
struct ProgramList
{
    struct Program
    {
        qint64 id;
        QString name;
        std::weak_ptr<mediadispatch::IProgram> program; // to be locked on the runtime thread only
    };
    struct Group
    {
        QString name;
        std::vector<Program> programs;
    };

    /// Runtime thread. Groups and programs that are gone are left out.
    explicit ProgramList(const mediadispatch::IProgramDispatch& dispatch);

    /// Today's name of the chosen program, or its last one; empty for the one played last.
    QString chosenName() const;

    mediadispatch::STDefaultPlayProgramInfo chosen;
    std::vector<Group> groups;
};

/// The choice of the program that plays when a project is opened: the one played last, then a
/// sub-menu for each group. It holds no program. GUI thread.
class ProgramMenu : public QMenu
{
    Q_OBJECT

public:
    explicit ProgramMenu(QWidget* parent);

    void setPrograms(const ProgramList& list, const QIcon& chosenIcon);
    void setLastTimeText(const QString& text) { m_lastTime->setText(text); }

    bool isLastTime(const QAction* action) const { return action == m_lastTime; }
    static std::weak_ptr<mediadispatch::IProgram> programOf(const QAction& action);

private:
    void removePrograms();

    QAction* m_lastTime;
};

/// The button that shows which program is chosen, and opens the menu below itself. GUI thread.
class ProgramButton : public mivo::widgets::PushButton
{
    Q_OBJECT

public:
    explicit ProgramButton(QWidget* parent = nullptr);

    ProgramMenu* programMenu() const { return m_menu; }

    /// Shows the name as far as there is room; all of a longer one is in the tool tip.
    void setProgram(const QString& name);

protected:
    // Instead of QPushButton's own menu, which runs an event loop: the page may be deleted in it.
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void openMenu();

    ProgramMenu* m_menu;
};

} // namespace mivo::settings
