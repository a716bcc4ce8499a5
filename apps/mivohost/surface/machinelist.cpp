#include "surface/machinelist.h"

#include "base/hosttext.h"
#include "cluster/synchroniser.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QVBoxLayout>

namespace mivohost {

MachineList::MachineList(const Synchroniser& synchroniser, QWidget* parent)
    : QDialog(parent), m_synchroniser(synchroniser), m_table(new QTableWidget(0, 4))
{
    m_table->setObjectName(QStringLiteral("machines"));
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setTabKeyNavigation(false);
    m_table->setShowGrid(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);
    auto* column = new QVBoxLayout(this);
    column->addWidget(m_table);
    resize(640, 320);
    connect(&synchroniser, &Synchroniser::machinesChanged, this, &MachineList::fill);
    setTexts();
}

void MachineList::setTexts()
{
    setWindowTitle(hostText("Machines"));
    m_table->setAccessibleName(hostText("Machines"));
    m_table->setHorizontalHeaderLabels({hostText("MachineName"), hostText("MachineAddress"),
                                        hostText("MachineVersion"), hostText("MachineState")});
    fill();
}

void MachineList::fill()
{
    const auto& machines = m_synchroniser.machines();
    m_table->setRowCount(static_cast<int>(machines.size()));
    int row = 0;
    for (const auto& [id, machine] : machines) {
        const char* state = id == m_synchroniser.machine() ? "MachineThis"
                            : machine.isConnected          ? "MachineConnected"
                                                           : "MachineAway";
        int column = 0;
        for (const QString& text :
             {machine.name, machine.address, machine.version, hostText(state)}) {
            auto* item = new QTableWidgetItem(text);
            item->setToolTip("<p>" + text.toHtmlEscaped() + "</p>");
            m_table->setItem(row, column++, item);
        }
        ++row;
    }
}

} // namespace mivohost
