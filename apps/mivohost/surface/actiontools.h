#pragma once

#include "mivohostapi/shortcuttypes.h"
#include "surface/actionsearch.h"

#include <QtWidgets/QWidget>

class QPushButton;

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class BindingSheet;
class InputMonitor;
class Peripherals;

/// What helps with the bindings of actions: the search, the sheet of all of them, and the monitor
/// of what comes in. GUI thread; what it borrows must outlive it.
class ActionTools : public QWidget
{
    Q_OBJECT

public:
    ActionTools(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals);

    void setTexts();

    ActionSearch& search() { return *m_search; }
    BindingSheet& sheet() { return *m_sheet; }
    InputMonitor& monitor() { return *m_monitor; }

signals:
    /// A text's key and what is put into it, as MainWindow::showNotice().
    void failed(const QString& key, const QString& argument);

private:
    void showInputs(EnumPeripheralShortCutType kind);

    ActionSearch* m_search;
    BindingSheet* m_sheet;
    InputMonitor* m_monitor;
    QPushButton* m_sheetButton;
    QPushButton* m_monitorButton;
};

} // namespace mivohost
