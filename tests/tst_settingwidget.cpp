#include <mivosettingswidgets/settingwidget.h>

#include "support/plainpage.h"
#include "support/test.h"

#include <QtWidgets/QScrollBar>

namespace settingwidgettest {

using mivo::settings::SettingWidget;

namespace {

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

} // namespace

TEST(SettingWidget, PlacesPagesByTheRankOfTheirKeys)
{
    const struct
    {
        const char* label;
        std::vector<std::pair<const char*, int>> inserted; // "-x" deletes x
        const char* shown;
    } cases[]{
        {"ascending whatever the order", {{"c", 3}, {"a", 1}, {"b", 2}}, "a b c"},
        {"without a key, one behind the other", {{"a", -1}, {"b", -1}, {"c", -1}}, "a b c"},
        {"negative keys", {{"b", 0}, {"a", -5}}, "a b"},
        {"a taken key goes above its holder", {{"a", 1}, {"b", 2}, {"x", 2}}, "a x b"},
        {"an unrecorded page does not count", {{"b", 2}, {"x", 2}, {"c", 3}}, "x c b"},
        {"without a key after keys", {{"b", 10}, {"a", -1}}, "a b"},
        {"a deleted page leaves its key",
         {{"a", 1}, {"b", 2}, {"-a", 0}, {"c", 3}, {"d", 1}},
         "d b c"},
        {"an unrecorded page leaves nothing",
         {{"a", 1}, {"b", 2}, {"x", 1}, {"-x", 0}, {"c", 3}},
         "a b c"},
    };
    for (const auto& test : cases) {
        SettingWidget section;
        std::map<std::string, PlainPage*> pages;
        for (const auto& [name, key] : test.inserted) {
            if (*name == '-') {
                delete pages.at(name + 1);
                continue;
            }
            pages[name] = new PlainPage(name);
            section.insertSettingsBox(pages[name], key);
        }
        EXPECT_EQ(shownOrder(section), test.shown) << test.label;
    }
}

TEST(SettingWidget, PassesOnTheTitleOfEveryPageAndKeepsItsOwn)
{
    SettingWidget section;
    section.setTitle("Audio");
    EXPECT_EQ(section.title(), "Audio");
    EXPECT_EQ(section.widget()->property("style"), "BG3");
    EXPECT_TRUE(section.widgetResizable());
    EXPECT_EQ(section.verticalScrollBar()->contextMenuPolicy(), Qt::NoContextMenu);
    EXPECT_EQ(section.horizontalScrollBar()->contextMenuPolicy(), Qt::NoContextMenu);
    QSignalSpy relabelled(&section, &SettingWidget::sigTitleTextChanged);
    for (const char* title : {"A", "B"}) {
        auto* page = new PlainPage(title);
        section.insertSettingsBox(page, 1);
        EXPECT_GE(section.sizeHint().width(), page->sizeHint().width()) << "by itself";
        emit page->sigTitleTextChanged(title);
        ASSERT_FALSE(relabelled.isEmpty());
        EXPECT_EQ(relabelled.takeFirst()[0], title);
    }
    EXPECT_TRUE(relabelled.isEmpty());
}

} // namespace settingwidgettest
