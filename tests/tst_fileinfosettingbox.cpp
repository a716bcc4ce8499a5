#include <mivosettingswidgets/fileinfosettingbox.h>

#include "support/test.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

namespace fileinfosettingboxtest {

using mivo::settings::FileInfoSettingBox;
using mivo::widgets::EditBox;

namespace {

class FileInfo : public ::testing::Test
{
protected:
    FileInfo()
    {
        page->setZRRuntime(&runtime);
        page->show();
    }

    ~FileInfo() override { delete page; }

    TestRuntime runtime;
    TestStore store;
    QPointer<FileInfoSettingBox> page = new FileInfoSettingBox;
};

} // namespace

TEST_F(FileInfo, TellsOnceForEachPathThatChangesWhetherTheDriveIsFull)
{
    store.change("playLogPath", "//server/playlog");
    store.change("cachePath", "Q:/cache");                     // a drive that there is not
    QSignalSpy notified(page, SIGNAL(notifySpaceUseup(bool))); // as hosts that connect by name
    page->setSettings(&store);
    ASSERT_TRUE(QTest::qWaitFor([&] { return notified.size() == 2; }));
    QApplication::processEvents();
    EXPECT_EQ(notified.size(), 2) << "the empty path is shown already";
    EXPECT_FALSE(notified[0][0].toBool());
    EXPECT_TRUE(notified[1][0].toBool());
    EXPECT_TRUE(page->findChild<QLabel*>("logSpaceTips")->isHidden());
    EXPECT_TRUE(page->findChild<QLabel*>("cacheSpaceTips")->isVisible());
    EXPECT_TRUE(page->findChild<QLabel*>("shareFolderSpaceTips")->isHidden());

    runtime.call([this] { store.cachePathChanged("Q:/cache"); });
    QApplication::processEvents();
    EXPECT_EQ(notified.size(), 2) << "the path that is shown";
    runtime.call([this] { store.change("cachePath", ""); });
    QApplication::processEvents();
    EXPECT_EQ(notified.size(), 3);
    EXPECT_TRUE(page->findChild<QLabel*>("cacheSpaceTips")->isHidden());
}

TEST_F(FileInfo, StoresTheCodeOfATimeAndKeepsTheChoiceForAnUnknownOne)
{
    page->setSettings(&store);
    auto* combo = page->findChild<mivo::widgets::ComboBox*>("playLogStorageTime");
    combo->removeItem(1); // so that codes and places differ
    combo->setCurrentIndex(2);
    EXPECT_EQ(store.held("playLogStorageTimeType"), 3);
    EXPECT_EQ(combo->currentText(), "SixMonths");
    QApplication::processEvents();
    runtime.call([this] { store.playLogStorageTimeTypeChanged(17); });
    QApplication::processEvents();
    EXPECT_EQ(combo->currentData(), 3);
    EXPECT_EQ(store.kept.writes.size(), 1U);
}

TEST_F(FileInfo, MayBeDestroyedWhileTheDialogOfARowIsOpen)
{
    const QTemporaryDir root;
    store.change("cachePath", root.path());
    page->setSettings(&store);
    QApplication::processEvents();
    auto* browse = page->findChildren<EditBox*>().at(1)->nextInFocusChain();
    whenModal<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory().path(), root.path()) << "where the folder of the row is";
        EXPECT_EQ(dialog.labelText(QFileDialog::Accept), "Open") << "by the rules of this page";
        delete page;
    });
    qobject_cast<QPushButton*>(browse)->click();
    EXPECT_TRUE(page.isNull());
    EXPECT_TRUE(store.kept.writes.empty());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace fileinfosettingboxtest
