#include "surface/programlist.h"

#include "base/hosttext.h"

#include <QtCore/QSignalBlocker>

#include <utility>

namespace mivohost {

namespace {

constexpr int idRole = Qt::UserRole;

} // namespace

ProgramList::ProgramList()
{
    setObjectName(QStringLiteral("programs"));
    setHeaderHidden(true);
    connect(this, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem* item) {
        const QVariant id = item->data(0, idRole);
        if (id.isValid()) {
            emit chosen(id.toLongLong());
        }
    });
}

void ProgramList::showPrograms(const ProgramDispatch::State& state)
{
    const bool hasOthers = m_shownGroups != state.project.groups;
    if (hasOthers) {
        m_shownGroups = state.project.groups;
        const QTreeWidgetItem* current = currentItem();
        const QVariant currentId = current ? current->data(0, idRole) : QVariant();
        clear();
        setCurrentItem(nullptr);
        for (const Project::Group& group : m_shownGroups) {
            auto* item = new QTreeWidgetItem(this, {group.name});
            for (const Project::Program& program : group.programs) {
                auto* leaf = new QTreeWidgetItem(item, {program.name});
                leaf->setData(0, idRole, program.id);
                if (currentId == program.id) {
                    setCurrentItem(leaf);
                }
            }
        }
        expandAll();
        if (currentItem() == nullptr) {
            setCurrentItem(topLevelItem(0));
        }
    }
    // There may be very many, and this happens at each start of one. For each change that it is
    // told of, the view looks for the item's row.
    const QSignalBlocker blocker(model());
    const QString fades = hostText("ProgramFades");
    const bool hasOtherTips = std::exchange(m_shownFades, fades) != fades || hasOthers;
    QFont playingFont = font();
    playingFont.setBold(true);
    for (std::size_t g = 0; g < m_shownGroups.size(); ++g) {
        const QTreeWidgetItem* group = topLevelItem(static_cast<int>(g));
        for (int p = 0; p < group->childCount(); ++p) {
            QTreeWidgetItem* leaf = group->child(p);
            const Project::Program& program =
                m_shownGroups[g].programs[static_cast<std::size_t>(p)];
            leaf->setData(0, Qt::FontRole,
                          program.id == state.playing ? QVariant(playingFont) : QVariant());
            if (hasOtherTips) {
                leaf->setToolTip(
                    0,
                    fades.arg(program.fadeInTime, 0, 'f', 1).arg(program.fadeOutTime, 0, 'f', 1));
            }
        }
    }
    viewport()->update();
}

} // namespace mivohost
