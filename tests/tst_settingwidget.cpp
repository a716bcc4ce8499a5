#include <mivosettingswidgets/settingwidget.h>

#include "support/plainpage.h"
#include "support/test.h"

namespace settingwidgettest {

using mivo::settings::SettingWidget;

/// Names of the pages from top to bottom, as Tab goes through them, too.
QString shownOrder(const SettingWidget& section)
{
    QStringList names;
    QStringList fields;
    QLayout* column = section.widget()->layout();
    for (int i = 0; i < column->count() - 1; ++i) {
        names.append(dynamic_cast<PlainPage&>(*column->itemAt(i)->widget()).titleText());
        fields += {names.last(), names.last() + '\''};
    }
    EXPECT_NE(column->itemAt(column->count() - 1)->spacerItem(), nullptr);
    QStringList stops;
    const QWidget* content = section.widget();
    for (auto* next = content->nextInFocusChain(); next != content;
         next = next->nextInFocusChain()) {
        if (const auto* edit = qobject_cast<const QLineEdit*>(next)) {
            stops.append(edit->text());
        }
    }
    EXPECT_EQ(stops, fields);
    return names.join(' ');
}

TEST(SettingWidget, PlacesPagesByTheRankOfTheirKeysAndTabGoesThroughThemFromTopToBottom)
{
    using Inserted = std::vector<std::pair<const char*, int>>; // "-x" deletes x
    const std::tuple<const char*, Inserted, const char*> cases[]{
        {"ascending whatever the order", {{"c", 3}, {"a", 1}, {"b", 2}}, "a b c"},
        {"from the last to the first", {{"c", 3}, {"b", 2}, {"a", 1}}, "a b c"},
        {"without a key, one behind the other", {{"a", -1}, {"b", -1}, {"c", -1}}, "a b c"},
        {"a taken key goes above its holder", {{"a", 1}, {"b", 2}, {"x", 2}}, "a x b"},
        {"an unrecorded page does not count", {{"b", 2}, {"x", 2}, {"c", 3}}, "x c b"},
        {"a deleted page leaves its key",
         {{"a", 1}, {"b", 2}, {"-a", 0}, {"c", 3}, {"d", 1}},
         "d b c"},
        {"an unrecorded page leaves nothing",
         {{"a", 1}, {"b", 2}, {"x", 1}, {"-x", 0}, {"c", 3}},
         "a b c"},
    };
    for (const auto& [label, inserted, shown] : cases) {
        SettingWidget section;
        std::map<std::string, PlainPage*> pages;
        for (const auto& [name, key] : inserted) {
            if (*name == '-') {
                delete pages.at(name + 1);
                continue;
            }
            pages[name] = new PlainPage(name);
            pages[name]->layout()->addWidget(new QLineEdit(QString(name) + '\''));
            section.insertSettingsBox(pages[name], key);
        }
        EXPECT_EQ(shownOrder(section), shown) << label;
    }
}

} // namespace settingwidgettest
