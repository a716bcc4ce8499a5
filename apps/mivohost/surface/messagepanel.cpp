#include "surface/messagepanel.h"

#include "base/hosttext.h"
#include "surface/messagecentre.h"
#include "surface/plaintable.h"

#include <QtCore/QDateTime>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableWidget>
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
    : QWidget(parent), m_centre(centre), m_label(new QLabel), m_list(new QTableWidget(0, 3))
{
    m_list->setObjectName(QStringLiteral("messages"));
    makePlain(*m_list);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setWordWrap(true);
    m_list->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->verticalHeader()->setMinimumSectionSize(0);
    QHeaderView* header = m_list->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(textColumn, QHeaderView::Stretch);
    m_label->setBuddy(m_list);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(m_label);
    column->addWidget(m_list);
    // Rows are as high as their texts, when these are wrapped anew. Queued: the header is not done.
    connect(header, &QHeaderView::sectionResized, m_list, &QTableWidget::resizeRowsToContents,
            Qt::QueuedConnection);
    // The newest is in view until somebody reads what came before.
    const QScrollBar* scroll = m_list->verticalScrollBar();
    connect(scroll, &QScrollBar::valueChanged, this,
            [this, scroll](int value) { m_isAtEnd = value == scroll->maximum(); });
    connect(scroll, &QScrollBar::rangeChanged, this, [this] {
        if (m_isAtEnd) {
            m_list->scrollToBottom();
        }
    });
    connect(&centre, &MessageCentre::posted, this, &MessagePanel::showLast);
    showLast(static_cast<int>(centre.messages().size()));
    setTexts();
}

void MessagePanel::setTexts()
{
    m_label->setText(hostText("Messages"));
    m_list->setAccessibleName(hostText("Messages"));
    m_list->setHorizontalHeaderLabels(
        {hostText("MessageTime"), hostText("MessageKind"), hostText("MessageText")});
    for (int row = 0; row < m_list->rowCount(); ++row) {
        QTableWidgetItem* item = m_list->item(row, kindColumn);
        item->setText(kindText(item->data(kindRole).toUInt()));
    }
}

void MessagePanel::showLast(int count)
{
    const auto& messages = m_centre.messages();
    for (auto message = std::prev(messages.end(), count); message != messages.end(); ++message) {
        const auto time = QDateTime::fromMSecsSinceEpoch(message->time);
        const auto text = QString::fromStdString(message->text);
        const int row = m_list->rowCount();
        m_list->insertRow(row);
        const auto add = [this, row](Column column, const QString& shown, const QString& tip) {
            auto* item = new QTableWidgetItem(shown);
            item->setToolTip(tip);
            m_list->setItem(row, column, item);
            return item;
        };
        add(timeColumn, time.toString(QStringLiteral("hh:mm:ss")),
            time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
        auto* kind = add(kindColumn, kindText(message->kind), {});
        kind->setData(kindRole, message->kind);
        kind->setIcon(QIcon(message->kind == velorn::msgcenter::MsgWarning
                                ? QStringLiteral(":/mivo/style/icons/warning.svg")
                                : QStringLiteral(":/mivo/style/icons/info.svg")));
        add(textColumn, text, "<p>" + text.toHtmlEscaped() + "</p>");
    }
    while (m_list->rowCount() > static_cast<int>(messages.size())) {
        m_list->removeRow(0);
    }
}

} // namespace mivohost
