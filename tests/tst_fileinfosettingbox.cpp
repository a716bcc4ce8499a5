#include <mivosettingswidgets/fileinfosettingbox.h>

#include "support/pagetest.h"

namespace fileinfosettingboxtest {

using FileInfo = PageTest<mivo::settings::FileInfoSettingBox>;

TEST_F(FileInfo, TellsOnceForEachPathThatChangesWhetherTheDriveIsFull)
{
    const QTemporaryDir root;
    store.change("playLogPath", "//server/playlog");
    store.change("cachePath", "Q:/cache"); // a drive that there is not
    page->show();
    QSignalSpy notified(page, SIGNAL(notifySpaceUseup(bool))); // as hosts that connect by name
    page->setSettings(&store);
    ASSERT_TRUE(QTest::qWaitFor([&] { return notified.size() == 2; }));
    EXPECT_EQ(notified[0][0], false);
    EXPECT_EQ(notified[1][0], true);
    EXPECT_TRUE(page->findChild<QLabel*>("logSpaceTips")->isHidden());
    EXPECT_TRUE(page->findChild<QLabel*>("cacheSpaceTips")->isVisible());
    EXPECT_TRUE(page->findChild<QLabel*>("shareFolderSpaceTips")->isHidden());
    runtime.call([&] {
        store.cachePathChanged("Q:/cache"); // which is shown
        store.change("cachePath", root.path());
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return notified.size() == 3; }));
    EXPECT_TRUE(page->findChild<QLabel*>("cacheSpaceTips")->isHidden());

    whenModal<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory().path(), root.path()) << "where the folder of the row is";
        EXPECT_EQ(dialog.labelText(QFileDialog::Accept), "Open") << "by the rules of this page";
        dialog.reject();
    });
    qobject_cast<QPushButton*>(control<mivo::widgets::EditBox>(1)->nextInFocusChain())->click();
    EXPECT_EQ(written(), "");
}

} // namespace fileinfosettingboxtest
