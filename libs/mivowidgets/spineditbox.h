#pragma once

#include "mivowidgets/export.h"
#include "mivowidgets/wheelonfocus.h"

#include <QtWidgets/QDoubleSpinBox>

namespace mivo::widgets {

/// An edit box for a number; whole numbers unless setDecimals() says otherwise. A number that is
/// being typed is taken over when the edit is finished, not at each key. One that is set without
/// the focus, as an assistive program does, is a finished edit. GUI thread.
class MIVOWIDGETS_EXPORT SpinEditBox : public WheelOnFocus<QDoubleSpinBox>
{
    Q_OBJECT

public:
    explicit SpinEditBox(QWidget* parent = nullptr);

protected:
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace mivo::widgets
