#include <mivosettingswidgets/settingbox.h>

#include "support/test.h"

#include <QtWidgets/QHBoxLayout>

TEST(SettingBox, StacksRowsUnderItsTitleAndKeepsTheHostsTags)
{
    mivo::settings::SettingBox box;
    EXPECT_EQ(box.objectName(), "settingBox");
    box.setTitle("Group");
    box.setClassName("audio");
    box.setPriorityIndex(-4);
    EXPECT_EQ(box.findChild<QLabel*>()->text(), "Group");
    EXPECT_EQ(box.findChild<QLabel*>()->height(), 20);
    EXPECT_EQ(box.className(), "audio");
    EXPECT_EQ(box.priorityIndex(), -4);

    const int rows = box.layout()->count();
    const int width = box.width();
    auto* row = new QHBoxLayout;
    row->setContentsMargins(9, 9, 9, 9);
    row->addWidget(new QLabel(QString(400, 'm')));
    box.addItemLayout(row);
    box.addItemLayout(nullptr);
    EXPECT_EQ(box.layout()->count(), rows + 1);
    EXPECT_EQ(row->contentsMargins(), QMargins());
    EXPECT_GT(box.width(), width) << "the box takes the size of its rows";
}
