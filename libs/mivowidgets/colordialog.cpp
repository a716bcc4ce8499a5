#include "mivowidgets/colordialog.h"

#include "mivowidgets/screenpicker.h"
#include "mivowidgets/tipdialog.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QPushButton>

namespace mivo::widgets {

ColorDialog::ColorDialog(QWidget* parent)
    : QColorDialog(parent), m_picker(new ScreenPicker(this)), m_pick(new QPushButton)
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setOption(DontUseNativeDialog); // native dialogs can't be translated by setTexts()
    const auto buttons = findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        if (button->text() == QColorDialog::tr("&Pick Screen Color")) {
            button->hide(); // Qt's picker: one screen only, no keyboard
        }
    }
    findChild<QDialogButtonBox*>()->addButton(m_pick, QDialogButtonBox::ActionRole);

    connect(m_pick, &QPushButton::clicked, this, &ColorDialog::pickFromScreen);
    connect(m_picker, &ScreenPicker::hovered, this, &ColorDialog::setCurrentColor);
    connect(m_picker, &ScreenPicker::picked, this, &ColorDialog::setCurrentColor);
    connect(m_picker, &ScreenPicker::cancelled, this, [this] { setCurrentColor(m_before); });
}

void ColorDialog::setTexts(const QString& title, const QString& accept, const QString& cancel,
                           const QString& pickScreen, const QString& noPicture)
{
    setWindowTitle(title);
    auto* buttons = findChild<QDialogButtonBox*>();
    buttons->button(QDialogButtonBox::Ok)->setText(accept);
    buttons->button(QDialogButtonBox::Cancel)->setText(cancel);
    m_pick->setText(pickScreen);
    m_noPicture = noPicture;
}

void ColorDialog::pickFromScreen()
{
    m_before = currentColor();
    if (!m_picker->start()) {
        TipDialog::ask(this, TipDialog::warning, m_noPicture, {},
                       findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->text());
    }
}

} // namespace mivo::widgets
