#include "surface/hintrow.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "surface/inputhint.h"
#include "surface/listenaddressbox.h"

#include <mivowidgets/alertlabel.h>

#include <QtWidgets/QHBoxLayout>

namespace mivohost {

HintRow::HintRow(Peripherals& peripherals)
    : m_peripherals(peripherals), m_hint(new mivo::widgets::AlertLabel), m_addressLabel(new QLabel),
      m_address(new ListenAddressBox(peripherals))
{
    m_hint->setObjectName(QStringLiteral("shortcutHint"));
    m_hint->setWordWrap(true);
    m_hint->setTextFormat(Qt::PlainText);
    m_addressLabel->setBuddy(m_address);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_hint, 1);
    row->addWidget(m_addressLabel);
    row->addWidget(m_address);
    hide();
    const auto follow = [this](auto& signal) {
        m_connections.emplace_back(
            signal.connect([this](const auto&... /*state*/) { showHint(); }));
    };
    follow(peripherals.midi().enabledChanged);
    follow(peripherals.midi().devicesChanged);
    follow(peripherals.midi().troubleChanged);
    follow(peripherals.dmx().infoChanged);
    follow(peripherals.dmx().failed);
    follow(peripherals.osc().infoChanged);
    follow(peripherals.osc().failed);
    follow(peripherals.listenAddressChanged);
}

void HintRow::setTexts()
{
    m_addressLabel->setText(hostText("ListenAddress"));
    m_address->refill();
    showHint();
}

void HintRow::setState(EnumPeripheralShortCutType kind, bool isEditing, bool isLocked)
{
    if (isEditing && isHidden()) {
        m_address->refill(); // cards may have come or gone
    }
    m_kind = kind;
    m_isLocked = isLocked;
    const bool hasAddress = isEditing && (kind == PeripheralDmx || kind == PeripheralOsc);
    m_addressLabel->setVisible(hasAddress);
    m_address->setVisible(hasAddress);
    showHint();
    setVisible(isEditing || isLocked);
}

void HintRow::setOscUrl(const std::string& url)
{
    m_oscUrl = url;
    showHint();
}

void HintRow::showHint()
{
    m_hint->setText(m_isLocked ? hostText("LockedHint")
                               : bindingHint(m_peripherals, m_kind, m_oscUrl));
    m_hint->setVisible(true); // speaks what is new
}

} // namespace mivohost
