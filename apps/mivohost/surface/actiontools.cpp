#include "surface/actiontools.h"

#include "base/hosttext.h"
#include "surface/bindingsheet.h"
#include "surface/buttontext.h"
#include "surface/inputmonitor.h"

#include <mivosettingswidgets/shortcutmgr.h>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>

namespace mivohost {

ActionTools::ActionTools(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals)
    : m_search(new ActionSearch(manager, peripherals)),
      m_sheet(new BindingSheet(manager, peripherals, this)),
      m_monitor(new InputMonitor(peripherals, this)), m_sheetButton(new QPushButton),
      m_monitorButton(new QPushButton)
{
    m_sheetButton->setObjectName(QStringLiteral("openBindingSheet"));
    m_sheetButton->setShortcut(QStringLiteral("Ctrl+Shift+K"));
    m_monitorButton->setObjectName(QStringLiteral("openInputMonitor"));
    m_monitorButton->setShortcut(QStringLiteral("Ctrl+Shift+M"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_search, 1);
    row->addWidget(m_sheetButton);
    row->addWidget(m_monitorButton);
    connect(m_sheetButton, &QPushButton::clicked, m_sheet, &BindingSheet::openWindow);
    connect(m_monitorButton, &QPushButton::clicked, m_monitor, &InputMonitor::openWindow);
    connect(m_sheet, &BindingSheet::failed, this, &ActionTools::failed);
    connect(&manager, &mivo::settings::ShortCutMgr::signalShowMonitorWidget, this,
            &ActionTools::showInputs);
}

void ActionTools::showInputs(EnumPeripheralShortCutType kind)
{
    if (kind != PeripheralKeyboard) {
        m_monitor->showKind(kind);
        window()->activateWindow(); // where the controls are learned
    }
}

void ActionTools::setTexts()
{
    setButtonText(*m_sheetButton, hostText("BindingSheet"));
    setButtonText(*m_monitorButton, hostText("InputMonitor"));
    m_search->setTexts();
    m_sheet->setTexts();
    m_monitor->setTexts();
}

} // namespace mivohost
