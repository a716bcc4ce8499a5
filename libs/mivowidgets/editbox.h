#pragma once

#include "mivowidgets/export.h"

#include <QtWidgets/QLineEdit>

namespace mivo::widgets {

/// An edit box for a line of text. GUI thread.
class MIVOWIDGETS_EXPORT EditBox : public QLineEdit
{
    Q_OBJECT

public:
    explicit EditBox(QWidget* parent = nullptr);
};

} // namespace mivo::widgets
