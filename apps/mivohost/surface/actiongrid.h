#pragma once

#include <QtWidgets/QScrollArea>

#include <string>
#include <utility>
#include <vector>

class QGridLayout;
class QLabel;

namespace mivohost {

class ActionButton;

/// The buttons of all actions, in groups, each in a row or several. GUI thread.
class ActionGrid : public QScrollArea
{
    Q_OBJECT

public:
    ActionGrid();

    void setTexts();

    /// In the order in which they are shown.
    const std::vector<ActionButton*>& actions() const { return m_actions; }
    /// Null for a type that is not in the table of actions.
    ActionButton* actionOf(int type) const;

signals:
    void clicked(int type, const std::string& path);

private:
    void addActions(QGridLayout& grid);

    std::vector<std::pair<std::string, QLabel*>> m_groups; // with the keys of their texts
    std::vector<ActionButton*> m_actions;
};

} // namespace mivohost
