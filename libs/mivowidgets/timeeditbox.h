#pragma once

#include "mivowidgets/export.h"
#include "mivowidgets/wheelonfocus.h"

#include <QtWidgets/QDateTimeEdit>

namespace mivo::widgets {

/// An edit box for a time of day. A time that is being typed is taken over when the edit is
/// finished, not at each key. GUI thread.
class MIVOWIDGETS_EXPORT TimeEditBox : public WheelOnFocus<QTimeEdit>
{
    Q_OBJECT

public:
    explicit TimeEditBox(QWidget* parent = nullptr);
};

} // namespace mivo::widgets
