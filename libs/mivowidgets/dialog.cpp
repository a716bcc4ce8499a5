#include "mivowidgets/dialog.h"

#include <QtWidgets/QVBoxLayout>

namespace mivo::widgets {

Dialog::Dialog(QWidget* parent) : QDialog(parent), m_dialogWidget(new QWidget(this))
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_dialogWidget->setObjectName(QStringLiteral("dialogWidget"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_dialogWidget);
}

QWidget* Dialog::dialogWidget() const
{
    return m_dialogWidget;
}

void Dialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

QString Dialog::title() const
{
    return windowTitle();
}

} // namespace mivo::widgets
