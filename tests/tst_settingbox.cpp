#include <mivosettingswidgets/settingbox.h>

#include <gtest/gtest.h>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

namespace settingboxtest {

using mivo::settings::SettingBox;

TEST(SettingBox, StacksRowsUnderItsTitle)
{
    SettingBox box;
    box.setTitle("Group");
    auto* label = box.findChild<QLabel*>();
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), "Group");
    EXPECT_EQ(label->height(), 20);
    EXPECT_TRUE(box.testAttribute(Qt::WA_StyledBackground));

    const int rows = box.layout()->count();
    auto* row = new QHBoxLayout;
    row->setContentsMargins(9, 9, 9, 9);
    row->addWidget(new QLabel(QString(400, 'm')));
    const int width = box.width();
    box.addItemLayout(row);
    EXPECT_EQ(box.layout()->count(), rows + 1);
    EXPECT_EQ(row->contentsMargins(), QMargins());
    EXPECT_GT(box.width(), width) << "the box takes the size of its rows";

    box.addItemLayout(nullptr);
    EXPECT_EQ(box.layout()->count(), rows + 1);
}

TEST(SettingBox, KeepsTheHostsTags)
{
    SettingBox box;
    EXPECT_EQ(box.objectName(), "settingBox");
    EXPECT_EQ(box.className(), "");
    EXPECT_EQ(box.priorityIndex(), 0);
    box.setClassName("audio");
    box.setPriorityIndex(-4);
    EXPECT_EQ(box.className(), "audio");
    EXPECT_EQ(box.priorityIndex(), -4);
}

} // namespace settingboxtest
