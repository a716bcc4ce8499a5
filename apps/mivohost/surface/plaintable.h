#pragma once

class QTableView;

namespace mivohost {

/// Has a table look as the program's lists do: whole rows without lines and numbers, and the tab
/// key leaves it. GUI thread.
void makePlain(QTableView& table);

} // namespace mivohost
