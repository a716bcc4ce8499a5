#include "surface/programlist.h"

#include "base/hosttext.h"

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
    if (m_shownGroups != state.project.groups) {
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
    for (QTreeWidgetItemIterator item(this); *item != nullptr; ++item) {
        const QVariant id = (*item)->data(0, idRole);
        QFont itemFont = font();
        itemFont.setBold(id.isValid() && id.toLongLong() == state.playing);
        (*item)->setFont(0, itemFont);
        if (const Project::Program* program =
                state.project.find(id.isValid() ? id.toLongLong() : -1)) {
            (*item)->setToolTip(0, hostText("ProgramFades")
                                       .arg(program->fadeInTime, 0, 'f', 1)
                                       .arg(program->fadeOutTime, 0, 'f', 1));
        }
    }
}

} // namespace mivohost
