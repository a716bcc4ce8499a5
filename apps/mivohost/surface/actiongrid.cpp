#include "surface/actiongrid.h"

#include "base/hosttext.h"
#include "surface/actionbutton.h"

#include <mivosettingswidgets/shortcuttable.h>

#include <QtCore/QVariant>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

#include <algorithm>

namespace mivohost {

using mivo::settings::peripheralActions;

namespace {

constexpr int columns = 8;

} // namespace

ActionGrid::ActionGrid()
{
    auto* grid = new QGridLayout;
    grid->setContentsMargins(10, 8, 10, 8);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(6);
    addActions(*grid);
    auto* content = new QWidget;
    content->setProperty("style", QStringLiteral("BG4"));
    content->setLayout(grid);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content);
}

void ActionGrid::addActions(QGridLayout& grid)
{
    int row = -1;
    int column = columns;
    std::string group;
    for (const auto& [type, path] : peripheralActions) {
        auto* action = new ActionButton(type, std::string(path));
        const std::string& key = action->textKey();
        const std::string groupKey = key.substr(0, key.find('/') + 1); // the first word of the path
        if (std::exchange(group, groupKey) != groupKey) {
            auto* label = new QLabel;
            grid.addWidget(label, ++row, 0);
            m_groups.emplace_back(group, label);
            column = 1;
        } else if (column == columns) {
            ++row;
            column = 1;
        }
        grid.addWidget(action, row, column++);
        connect(action, &QPushButton::clicked, this,
                [this, action] { emit clicked(action->type(), action->path()); });
        m_actions.push_back(action);
    }
    for (int i = 1; i < columns; ++i) {
        grid.setColumnStretch(i, 1);
    }
    grid.setRowStretch(row + 1, 1);
}

void ActionGrid::setTexts()
{
    for (const auto& [key, label] : m_groups) {
        label->setText(hostText(QString::fromStdString(key)));
    }
    for (ActionButton* action : m_actions) {
        action->setTexts();
    }
}

ActionButton* ActionGrid::actionOf(int type) const
{
    const auto found =
        std::find_if(m_actions.begin(), m_actions.end(),
                     [type](const ActionButton* each) { return each->type() == type; });
    return found == m_actions.end() ? nullptr : *found;
}

} // namespace mivohost
