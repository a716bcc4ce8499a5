#include "mivowidgets/tipdialog.h"

#include "mivowidgets/alertlabel.h"
#include "mivowidgets/pushbutton.h"

#include <QtCore/QPointer>
#include <QtCore/QVariant>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

namespace mivo::widgets {

TipDialog::TipDialog(QWidget* parent)
    : Dialog(parent), m_icon(new QLabel), m_tip(new AlertLabel), m_assist(new QLabel),
      m_cancel(new PushButton), m_accept(new PushButton)
{
    m_icon->setObjectName(QStringLiteral("tipIcon"));
    m_icon->setFixedSize(24, 24);
    m_tip->setObjectName(QStringLiteral("tipText"));
    m_tip->setTextFormat(Qt::PlainText); // it may contain a name given by a user
    m_tip->setWordWrap(true);
    m_assist->setObjectName(QStringLiteral("tipAssistText"));
    m_assist->setTextFormat(Qt::PlainText);
    m_assist->setWordWrap(true);
    m_assist->hide();
    m_cancel->setProperty("style", QStringLiteral("assist"));
    m_cancel->hide();
    m_accept->setProperty("style", QStringLiteral("general"));

    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    texts->addWidget(m_tip);
    texts->addWidget(m_assist);
    texts->addStretch();
    auto* message = new QHBoxLayout;
    message->setSpacing(14);
    message->addWidget(m_icon, 0, Qt::AlignTop);
    message->addLayout(texts, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_accept);
    auto* column = new QVBoxLayout(dialogWidget());
    column->setContentsMargins(24, 24, 24, 20);
    column->setSpacing(20);
    column->addLayout(message, 1);
    column->addLayout(buttons);
    setMinimumWidth(460);
    setTipKind(information);

    connect(m_cancel, &PushButton::clicked, this, [this] { done(cancelled); });
    connect(m_accept, &PushButton::clicked, this, [this] { done(accepted); });
}

void TipDialog::setTipKind(int kind)
{
    m_icon->setProperty("kind", kind);
}

void TipDialog::setTipText(const QString& text)
{
    m_tip->setText(text);
    if (!isVisible()) {
        setAccessibleName(text); // later it would be spoken each time
    }
}

void TipDialog::announceTip()
{
    m_tip->announce();
}

QString TipDialog::tipText() const
{
    return m_tip->text();
}

void TipDialog::setAssistText(const QString& text)
{
    m_assist->setText(text);
    m_assist->setVisible(!text.isEmpty());
}

void TipDialog::setButtonTexts(const QString& cancel, const QString& accept)
{
    m_cancel->setText(cancel);
    m_accept->setText(accept);
}

void TipDialog::setCancelButtonVisible(bool visible)
{
    m_cancel->setVisible(visible);
}

int TipDialog::run()
{
    // Return must choose the harmless answer.
    (m_cancel->isHidden() ? m_accept : m_cancel)->setFocus();
    return exec();
}

int TipDialog::ask(QWidget* parent, Kind kind, const QString& text, const QString& cancel,
                   const QString& accept, const QString& assist)
{
    const QPointer<TipDialog> dialog =
        new TipDialog(parent); // null if its parent is destroyed meanwhile
    dialog->setTipKind(kind);
    dialog->setTipText(text);
    dialog->setAssistText(assist);
    dialog->setButtonTexts(cancel, accept);
    dialog->setCancelButtonVisible(!cancel.isEmpty());
    const int result = dialog->run();
    delete dialog;
    return result;
}

} // namespace mivo::widgets
