#include <mivosettingswidgets/settingwidget.h>

#include "support/plainpage.h"

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QScrollBar>

namespace settingwidgettest {

using mivo::settings::SettingWidget;

namespace {

/// Names of the pages from top to bottom.
QString shownOrder(const SettingWidget& section)
{
    QStringList names;
    QLayout* column = section.widget()->layout();
    for (int i = 0; i < column->count(); ++i) {
        if (auto* page = dynamic_cast<PlainPage*>(column->itemAt(i)->widget())) {
            names.append(page->titleText());
        }
    }
    return names.join(' ');
}

struct OrderCase
{
    const char* label;
    std::vector<std::pair<const char*, int>> inserted;
    const char* shown;
};

} // namespace

TEST(SettingWidget, PlacesPagesByTheRankOfTheirKeys)
{
    const std::vector<OrderCase> cases{
        {"ascending whatever the order", {{"c", 3}, {"a", 1}, {"b", 2}}, "a b c"},
        {"without a key, one behind the other", {{"a", -1}, {"b", -1}, {"c", -1}}, "a b c"},
        {"negative keys", {{"b", 0}, {"a", -5}}, "a b"},
        {"a taken key goes above its holder", {{"a", 1}, {"b", 2}, {"x", 2}}, "a x b"},
        {"an unrecorded page does not count", {{"b", 2}, {"x", 2}, {"c", 3}}, "x c b"},
        {"without a key after keys", {{"b", 10}, {"a", -1}}, "a b"},
    };
    for (const OrderCase& test : cases) {
        SettingWidget section;
        for (const auto& [name, key] : test.inserted) {
            section.insertSettingsBox(new PlainPage(name), key);
        }
        EXPECT_EQ(shownOrder(section).toStdString(), test.shown) << test.label;
    }
}

TEST(SettingWidget, APageThatIsDeletedLeavesItsKey)
{
    SettingWidget section;
    auto* first = new PlainPage("a");
    section.insertSettingsBox(first, 1);
    section.insertSettingsBox(new PlainPage("b"), 2);
    delete first;
    section.insertSettingsBox(new PlainPage("c"), 3);
    section.insertSettingsBox(new PlainPage("d"), 1);
    EXPECT_EQ(shownOrder(section), "d b c");
}

TEST(SettingWidget, PassesOnTheTitleOfEveryPage)
{
    SettingWidget section;
    auto* first = new PlainPage("a");
    auto* second = new PlainPage("b");
    section.insertSettingsBox(first, 1);
    section.insertSettingsBox(second, 1);
    QSignalSpy relabelled(&section, &SettingWidget::sigTitleTextChanged);
    emit first->sigTitleTextChanged("A");
    emit second->sigTitleTextChanged("B");
    ASSERT_EQ(relabelled.size(), 2);
    EXPECT_EQ(relabelled[1][0].toString(), "B");
}

TEST(SettingWidget, OwnsItsPagesAndKeepsATitleToItself)
{
    SettingWidget section;
    section.setTitle("Audio");
    EXPECT_EQ(section.title(), "Audio");
    EXPECT_EQ(section.widget()->property("style"), "BG3");
    EXPECT_TRUE(section.widgetResizable());
    EXPECT_EQ(section.verticalScrollBar()->contextMenuPolicy(), Qt::NoContextMenu);
    EXPECT_EQ(section.horizontalScrollBar()->contextMenuPolicy(), Qt::NoContextMenu);
    auto* page = new PlainPage("a");
    section.insertSettingsBox(page, 0);
    EXPECT_TRUE(section.isAncestorOf(page));
    auto* layout = section.widget()->layout();
    EXPECT_NE(layout->itemAt(layout->count() - 1)->spacerItem(), nullptr);
    EXPECT_GE(section.sizeHint().width(), page->sizeHint().width()) << "by itself";
}

} // namespace settingwidgettest
