#pragma once

#include "mivowidgets/export.h"
#include "mivowidgets/wheelonfocus.h"

#include <QtCore/QPointer>
#include <QtWidgets/QComboBox>

namespace mivo::widgets {

/// A combo box in the host's look. Its accessible name also names it where Qt takes the chosen item
/// for the name (AT-SPI). GUI thread.
class MIVOWIDGETS_EXPORT ComboBox : public WheelOnFocus<QComboBox>
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget* parent = nullptr);
    ~ComboBox() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QPointer<QWidget> m_nameLabel;
};

} // namespace mivo::widgets
