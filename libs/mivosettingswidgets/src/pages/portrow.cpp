#include "pages/portrow.h"

#include "mivosettingswidgets/controls.h"

#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

namespace mivo::settings {

using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;

FailureLabel::FailureLabel()
{
    setObjectName(QStringLiteral("portFailure"));
    setWordWrap(true);
    hide();
}

void FailureLabel::setReason(const std::string& reason)
{
    setText(QString::fromStdString(reason));
    setToolTip(text());
    setVisible(!reason.empty());
}

PortRow::PortRow() : port(new SpinEditBox), open(new PushButton), close(new PushButton)
{
    setUsualWidth(label, 64);
    setUsualWidth(port, 80);
    port->setRange(0, 65534); // ends one before the OSC port does; kept on purpose
    open->setProperty("assist", true);
    close->setProperty("assist", true);
    setUsualHeight(status, 20);
    status->hide();
    layout = rowOf({label, port, open, close, status});
    layout->setSpacing(12);
    layout->insertWidget(5, failure, 1);
}

void PortRow::show(bool isOpen, int number)
{
    showValue(port, number);
    isRequested = isOpen;
    open->setEnabled(!isOpen);
    port->setEnabled(!isOpen);
    status->setVisible(isOpen);
    failure->setReason({}); // one that lasts is reported behind the change
}

void PortRow::showFailure(const std::string& reason)
{
    isRequested |= !reason.empty(); // what could not be opened is to be opened still
    failure->setReason(reason);
}

} // namespace mivo::settings
