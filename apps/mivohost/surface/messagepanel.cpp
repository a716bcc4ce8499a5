#include "surface/messagepanel.h"

#include "surface/hosttext.h"
#include "surface/messagecentre.h"

#include <QtCore/QDateTime>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include <cstdint>
#include <iterator>

namespace mivohost {

namespace {

enum Column { timeColumn, kindColumn, textColumn };
constexpr int kindRole = Qt::UserRole;

QString kindText(std::uint32_t kind)
{
    switch (kind) {
    case velorn::msgcenter::MsgQuestion:
        return hostText("MessageQuestion");
    case velorn::msgcenter::MsgWarning:
        return hostText("MessageWarning");
    default:
        return hostText("MessageInformation");
    }
}

} // namespace

MessagePanel::MessagePanel(const MessageCentre& centre, QWidget* parent)
    : QWidget(parent), m_centre(centre), m_label(new QLabel), m_list(new QTreeWidget)
{
    m_list->setObjectName(QStringLiteral("messages"));
    m_list->setColumnCount(3);
    m_list->setRootIsDecorated(false);
    m_list->setWordWrap(true);
    m_list->header()->setSectionsMovable(false);
    m_list->header()->setSectionResizeMode(timeColumn, QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(kindColumn, QHeaderView::ResizeToContents);
    m_label->setBuddy(m_list);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(m_label);
    column->addWidget(m_list);
    connect(&centre, &MessageCentre::posted, this, &MessagePanel::showLast);
    showLast(static_cast<int>(centre.messages().size()));
    setTexts();
}

void MessagePanel::setTexts()
{
    m_label->setText(hostText("Messages"));
    m_list->setAccessibleName(hostText("Messages"));
    m_list->setHeaderLabels(
        {hostText("MessageTime"), hostText("MessageKind"), hostText("MessageText")});
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem* item = m_list->topLevelItem(row);
        item->setText(kindColumn, kindText(item->data(kindColumn, kindRole).toUInt()));
    }
}

void MessagePanel::showLast(int count)
{
    const auto& messages = m_centre.messages();
    const QScrollBar* scroll = m_list->verticalScrollBar();
    const bool isAtEnd = scroll->value() == scroll->maximum();
    for (auto message = std::prev(messages.end(), count); message != messages.end(); ++message) {
        const auto time = QDateTime::fromMSecsSinceEpoch(message->time);
        const auto text = QString::fromStdString(message->text);
        auto* item = new QTreeWidgetItem(
            m_list, {time.toString(QStringLiteral("hh:mm:ss")), kindText(message->kind), text});
        item->setData(kindColumn, kindRole, message->kind);
        item->setToolTip(timeColumn, time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
        item->setToolTip(textColumn, "<p>" + text.toHtmlEscaped() + "</p>");
        if (message->kind == velorn::msgcenter::MsgWarning) {
            item->setIcon(kindColumn, QIcon(QStringLiteral(":/style/icons/warning.svg")));
        }
    }
    while (m_list->topLevelItemCount() > static_cast<int>(messages.size())) {
        delete m_list->topLevelItem(0);
    }
    if (isAtEnd) { // else somebody reads what came before
        m_list->scrollToBottom();
    }
}

} // namespace mivohost
