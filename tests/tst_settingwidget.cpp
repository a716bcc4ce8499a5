#include <mivosettingswidgets/settingwidget.h>

#include "support/plainpage.h"
#include "support/test.h"

namespace settingwidgettest {

using mivo::settings::SettingWidget;

/// Names of the pages from top to bottom.
QString shownOrder(const SettingWidget& section)
{
    QStringList names;
    QLayout* column = section.widget()->layout();
    for (int i = 0; i < column->count() - 1; ++i) {
        names.append(dynamic_cast<PlainPage&>(*column->itemAt(i)->widget()).titleText());
    }
    EXPECT_NE(column->itemAt(column->count() - 1)->spacerItem(), nullptr);
    return names.join(' ');
}

TEST(SettingWidget, PlacesPagesByTheRankOfTheirKeys)
{
    using Inserted = std::vector<std::pair<const char*, int>>; // "-x" deletes x
    const std::tuple<const char*, Inserted, const char*> cases[]{
        {"ascending whatever the order", {{"c", 3}, {"a", 1}, {"b", 2}}, "a b c"},
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
            section.insertSettingsBox(pages[name], key);
        }
        EXPECT_EQ(shownOrder(section), shown) << label;
    }
}

TEST(SettingWidget, TabGoesThroughThePagesFromTopToBottom)
{
    for (const auto& keys : {std::vector{1, 2, 3}, {3, 2, 1}, {1, 3, 2}, {2, 3, 1}}) {
        SettingWidget section;
        for (const int key : keys) {
            auto* page = new PlainPage(QString::number(key));
            page->layout()->addWidget(new QLineEdit(QString::number(key) + '\''));
            section.insertSettingsBox(page, key);
        }
        QStringList stops;
        const QWidget* content = section.widget();
        for (const QWidget* next = content->nextInFocusChain(); next != content;
             next = next->nextInFocusChain()) {
            if (const auto* edit = qobject_cast<const QLineEdit*>(next)) {
                stops.append(edit->text());
            }
        }
        EXPECT_EQ(stops.join(' '), "1 1' 2 2' 3 3'") << keys[0] << keys[1] << keys[2];
    }
}

} // namespace settingwidgettest
