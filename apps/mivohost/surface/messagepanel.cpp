#include "surface/messagepanel.h"

#include "surface/hosttext.h"
#include "surface/messagecentre.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

namespace mivohost {

namespace {

enum Column { timeColumn, kindColumn, textColumn };
constexpr int warning = 2;

QString kindText(const Message& message)
{
    return hostText(message.kind == warning ? "MessageWarning" : "MessageNote");
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
    connect(&centre, &MessageCentre::posted, this, &MessagePanel::showNewest);
    showNewest(static_cast<int>(centre.messages().size()));
    setTexts();
}

void MessagePanel::setTexts()
{
    m_label->setText(hostText("Messages"));
    m_list->setAccessibleName(hostText("Messages"));
    m_list->setHeaderLabels(
        {hostText("MessageTime"), hostText("MessageKind"), hostText("MessageText")});
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        m_list->topLevelItem(row)->setText(
            kindColumn, kindText(m_centre.messages()[static_cast<std::size_t>(row)]));
    }
}

void MessagePanel::showNewest(int count)
{
    for (int row = 0; row < count; ++row) {
        const Message& message = m_centre.messages()[static_cast<std::size_t>(row)];
        auto* item = new QTreeWidgetItem(
            {message.time.toString(QStringLiteral("hh:mm:ss")), kindText(message), message.text});
        item->setToolTip(timeColumn, message.time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
        item->setToolTip(textColumn, "<p>" + message.text.toHtmlEscaped() + "</p>");
        if (message.kind == warning) {
            item->setIcon(kindColumn, QIcon(QStringLiteral(":/style/icons/warning.svg")));
        }
        m_list->insertTopLevelItem(row, item);
    }
    while (m_list->topLevelItemCount() > static_cast<int>(m_centre.messages().size())) {
        delete m_list->topLevelItem(m_list->topLevelItemCount() - 1);
    }
}

} // namespace mivohost
