#pragma once

#include <QtWidgets/QWidget>

class QLabel;
class QTreeWidget;

namespace mivohost {

class MessageCentre;

/// The messages of a centre, the newest on top. GUI thread; the centre must outlive it.
class MessagePanel : public QWidget
{
    Q_OBJECT

public:
    explicit MessagePanel(const MessageCentre& centre, QWidget* parent = nullptr);

    /// Makes every text again in the language in force.
    void setTexts();

private:
    void showNewest(int count);

    const MessageCentre& m_centre;
    QLabel* m_label;
    QTreeWidget* m_list;
};

} // namespace mivohost
