#include "pages/portrow.h"

#include "mivosettingswidgets/controls.h"

#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

namespace mivo::settings {

using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;

FailureLabel::FailureLabel(QWidget* parent) : AlertLabel(parent)
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

PortRow::PortRow(QWidget* page)
    : label(new QLabel(page)), port(new SpinEditBox(page)), open(new PushButton(page)),
      close(new PushButton(page)), status(new QLabel(page)), failure(new FailureLabel(page))
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
