#pragma once

#include "mivowidgets/export.h"

#include <QtWidgets/QDoubleSpinBox>

namespace mivo::widgets {

/// An edit box for a number; whole numbers unless setDecimals() says otherwise. A number that is
/// being typed is taken over when the edit is finished, not at each key, and the wheel changes it
/// only while the box has the focus. GUI thread.
class MIVOWIDGETS_EXPORT SpinEditBox : public QDoubleSpinBox
{
    Q_OBJECT

public:
    explicit SpinEditBox(QWidget* parent = nullptr);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace mivo::widgets
