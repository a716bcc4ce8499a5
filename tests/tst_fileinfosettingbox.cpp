#include <mivosettingswidgets/fileinfosettingbox.h>

#include "support/dialogs.h"
#include "support/qtlog.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <mivowidgets/combobox.h>
#include <mivowidgets/editbox.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>

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

    QPushButton* browseOf(int row)
    {
        return qobject_cast<QPushButton*>(
            page->findChildren<EditBox*>().at(row)->nextInFocusChain());
    }

    TestRuntime runtime;
    TestStore store;
    QtLog log;
    QPointer<FileInfoSettingBox> page = new FileInfoSettingBox;
};

} // namespace

TEST_F(FileInfo, TellsOnceForEachPathThatChangesWhetherTheDriveIsFull)
{
    ASSERT_EQ(FileInfoSettingBox::staticMetaObject
                  .method(FileInfoSettingBox::staticMetaObject.methodOffset())
                  .methodSignature(),
              "notifySpaceUseup(bool)");
    store.change("playLogPath", "//server/playlog");
    store.change("cachePath", "Q:/cache"); // a drive that there is not
    QSignalSpy notified(page, &FileInfoSettingBox::notifySpaceUseup);
    page->setSettings(&store);
    QApplication::processEvents();
    ASSERT_EQ(notified.size(), 2) << "the empty path is shown already";
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

TEST_F(FileInfo, EachRowHasItsOwnSubFolderAndStartsAgainWhereItIs)
{
    const QTemporaryDir root;
    page->setSettings(&store);
    const QStringList made{"/playlog", "/cache", "/sharedfolder"};
    for (int row = 0; row < made.size(); ++row) {
        whenModal<QFileDialog>([&](QFileDialog& dialog) { chooseFolder(dialog, root.path()); });
        browseOf(row)->click();
        EXPECT_EQ(page->findChildren<EditBox*>().at(row)->text(), root.path() + made[row]);
        whenModal<QFileDialog>([&](QFileDialog& dialog) {
            EXPECT_EQ(dialog.directory().path(), root.path() + made[row]);
            chooseFolder(dialog, root.path() + made[row]);
        });
        browseOf(row)->click();
        QApplication::processEvents();
        EXPECT_EQ(QtLog::lines().size(), static_cast<std::size_t>(row) + 1);
        EXPECT_EQ(QtLog::lines().back(), "--FileInfoSetting-- compare last time path is true!");
    }
    EXPECT_EQ(store.held("playLogPath"), root.path() + "/playlog");
    EXPECT_EQ(store.held("cachePath"), root.path() + "/cache");
    EXPECT_EQ(store.held("sharePath"), root.path() + "/sharedfolder");
    EXPECT_EQ(store.kept.writes.size(), 3U);
}

TEST_F(FileInfo, MayBeDestroyedWhileItsFolderDialogIsOpen)
{
    page->setSettings(&store);
    whenModal<QFileDialog>([this](QFileDialog& /*dialog*/) { delete page; });
    browseOf(1)->click();
    EXPECT_TRUE(page.isNull());
    EXPECT_TRUE(store.kept.writes.empty());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace fileinfosettingboxtest
