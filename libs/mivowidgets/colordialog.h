#pragma once

#include "mivowidgets/export.h"

#include <QtWidgets/QColorDialog>

namespace mivo::widgets {

class ScreenPicker;

/// Qt's colour dialog with translatable texts and a picker that covers all screens. While it is
/// open, currentColorChanged() tells of every colour that is tried, also by that picker. GUI
/// thread.
class MIVOWIDGETS_EXPORT ColorDialog : public QColorDialog
{
    Q_OBJECT

public:
    explicit ColorDialog(QWidget* parent = nullptr);

    /// The window's title, what the buttons say, Qt's own words until then, and what is told where
    /// no screen can be photographed.
    void setTexts(const QString& title, const QString& accept, const QString& cancel,
                  const QString& pickScreen, const QString& noPicture);

    /// The picker behind the button; the dialog's own.
    ScreenPicker& screenPicker() { return *m_picker; }

private:
    void pickFromScreen();

    ScreenPicker* m_picker;
    QPushButton* m_pick;
    QString m_noPicture;
    QColor m_before; // the colour before picking started
};

} // namespace mivo::widgets
