#pragma once

#include "mivowidgets/export.h"

#include <QtWidgets/QPushButton>

namespace mivo::widgets {

/// A push button that never takes a dialog's Return key unless it has the focus. In an exclusive
/// group every button keeps its own place in the tab order. GUI thread.
class MIVOWIDGETS_EXPORT PushButton : public QPushButton
{
    Q_OBJECT

public:
    explicit PushButton(QWidget* parent = nullptr);
    /// The same, with a text.
    explicit PushButton(const QString& text, QWidget* parent = nullptr);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace mivo::widgets
