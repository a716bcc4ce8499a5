#include "pages/programmenu.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/texts.h"

#include <QtCore/QSet>
#include <QtGui/QKeyEvent>

Q_DECLARE_METATYPE(std::weak_ptr<mivo::mediadispatch::IProgram>)

namespace mivo::settings {

using mivo::mediadispatch::IProgram;
using mivo::mediadispatch::IProgramDispatch;

namespace {

/// A name as the text of an action or button, where a single "&" would mark a mnemonic.
QString controlText(QString name)
{
    return name.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

ProgramList::ProgramList(const IProgramDispatch& dispatch)
    : chosen(dispatch.getDefaultPlayProgram())
{
    for (const auto& weakGroup : dispatch.programGroups()) {
        const auto group = weakGroup.lock();
        if (!group) {
            continue;
        }
        groups.push_back({group->name(), {}});
        for (const auto& weakProgram : group->programs()) {
            if (const auto program = weakProgram.lock()) {
                groups.back().programs.push_back({program->id(), program->name(), weakProgram});
            }
        }
    }
}

QString ProgramList::chosenName() const
{
    if (chosen.lastTime) {
        return {};
    }
    for (const Group& group : groups) {
        for (const Program& program : group.programs) {
            if (program.id == chosen.programId) {
                return program.name;
            }
        }
    }
    return chosen.programName;
}

ProgramMenu::ProgramMenu(QWidget* parent) : QMenu(parent), m_lastTime(addAction(QString()))
{
    setObjectName(QStringLiteral("groupMenu"));
    setFixedWidth(140);
    setToolTipsVisible(true);
}

void ProgramMenu::setPrograms(const ProgramList& list, const QIcon& chosenIcon)
{
    removePrograms();
    m_lastTime->setIcon(list.chosen.lastTime ? chosenIcon : QIcon());
    if (list.groups.empty()) {
        return;
    }
    addSeparator();
    addAction(text(QStringLiteral("ProgramList")))->setEnabled(false); // a heading
    constexpr int groupTextWidth = 80; // between the icon and the arrow
    for (const auto& group : list.groups) {
        const QString shown = fontMetrics().elidedText(group.name, Qt::ElideRight, groupTextWidth);
        QMenu* menu = addMenu(controlText(shown));
        menu->setAccessibleName(group.name);
        menu->menuAction()->setToolTip(shown == group.name ? QString() : tipOf(group.name));
        menu->setEnabled(!group.programs.empty());
        for (const auto& program : group.programs) {
            QAction* action = menu->addAction(controlText(program.name));
            action->setData(QVariant::fromValue(program.program));
            if (!list.chosen.lastTime && program.id == list.chosen.programId) {
                action->setIcon(chosenIcon);
            }
        }
    }
}

std::weak_ptr<IProgram> ProgramMenu::programOf(const QAction& action)
{
    return action.data().value<std::weak_ptr<IProgram>>();
}

void ProgramMenu::removePrograms()
{
    const auto entries = actions();
    for (QAction* entry : entries) {
        if (entry->menu() != nullptr) {
            delete entry->menu(); // and its entry
        } else if (entry != m_lastTime) {
            delete entry;
        }
    }
}

ProgramButton::ProgramButton(QWidget* parent) : PushButton(parent), m_menu(new ProgramMenu(this))
{
    setObjectName(QStringLiteral("openProjectFileDefaultPlayBtn"));
    setUsualWidth(this, 140);
    setUsualHeight(this, 26);
    setMenu(m_menu);
}

void ProgramButton::setProgram(const QString& name)
{
    constexpr int textWidth = 108;
    const QString shown = fontMetrics().elidedText(name, Qt::ElideRight, textWidth);
    setText(controlText(shown));
    setToolTip(shown == name ? QString() : tipOf(name));
}

void ProgramButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        openMenu();
    } else {
        PushButton::mousePressEvent(event);
    }
}

void ProgramButton::keyPressEvent(QKeyEvent* event)
{
    static const QSet<int> opening{Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Down};
    if (opening.contains(event->key())) {
        openMenu();
    } else {
        PushButton::keyPressEvent(event);
    }
}

void ProgramButton::openMenu()
{
    m_menu->popup(mapToGlobal(rect().bottomLeft()));
}

} // namespace mivo::settings
