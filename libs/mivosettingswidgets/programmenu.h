#pragma once

#include "mivohostapi/iprogramdispatch.h"

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

/// A name as the text of an action or a button: a "&" in it is one, and no mnemonic.
QString controlText(QString name);

} // namespace mivo::settings
