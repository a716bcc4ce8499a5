#include "surface/plaintable.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTableView>

namespace mivohost {

void makePlain(QTableView& table)
{
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setTabKeyNavigation(false);
    table.setShowGrid(false);
    table.verticalHeader()->hide();
    table.horizontalHeader()->setHighlightSections(false);
    table.horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

} // namespace mivohost
