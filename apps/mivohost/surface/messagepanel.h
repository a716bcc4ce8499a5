#pragma once

#include <QtWidgets/QWidget>

class QLabel;
class QTableWidget;

namespace mivohost {

class MessageCentre;

/// The messages of a centre. GUI thread; the centre must outlive it.
class MessagePanel : public QWidget
{
    Q_OBJECT

public:
    explicit MessagePanel(const MessageCentre& centre, QWidget* parent = nullptr);

    /// Makes every text again in the language in force. Messages stay as they were posted.
    void setTexts();

private:
    void showLast(int count);

    const MessageCentre& m_centre;
    QLabel* m_label;
    QTableWidget* m_list;
    bool m_isAtEnd = true;
};

} // namespace mivohost
