#pragma once

#include "mivowidgets/export.h"

#include <QtWidgets/QLabel>

namespace mivo::widgets {

/// A label for failures and warnings: screen readers speak it when it appears. GUI thread.
class MIVOWIDGETS_EXPORT AlertLabel : public QLabel
{
    Q_OBJECT

public:
    explicit AlertLabel(QWidget* parent = nullptr);

    /// Has its text spoken now; without one, or while it is hidden, nothing.
    void announce();

    /// A label that is shown already is spoken again if its text is another one by now.
    void setVisible(bool visible) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QString m_spoken;
};

} // namespace mivo::widgets
