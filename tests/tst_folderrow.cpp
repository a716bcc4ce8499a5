#include "folders/folderrow.h"

#include "support/files.h"
#include "support/test.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QProgressDialog>

#include <atomic>
#include <future>

namespace folderrowtest {

using namespace mivo::settings;
using mivo::qutils::ClearResult;
using mivo::widgets::TipDialog;

namespace {

constexpr double gibibyte = 1 << 30;

class Row : public ::testing::Test
{
protected:
    Row()
    {
        means.bytesAvailable = [this](const QString& drive) {
            asked.append(drive);
            return available;
        };
    }

    ~Row() override { delete page; }

    /// A new page with a row.
    void make(const QString& path = "D:/cache")
    {
        delete page;
        page = new QWidget;
        tip = new QLabel("full");
        row = new FolderRow(page, tip, means);
        row->setParent(page);
        page->setLayout(row->layout);
        row->addTexts("Cache", [](const char* key, const std::function<void(const QString&)>& set) {
            set(QString::fromLatin1(key));
        });
        page->show();
        page->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(page));
        row->setPath(path);
    }

    /// Makes a row that clears, on a thread of its own, until it is told to end.
    void startClearingForever()
    {
        means.clear = [clearing = clearing](const QString&, const std::function<bool(int)>& goOn) {
            ClearResult result;
            for (*clearing = true; goOn(result.removed); ++result.removed) {
                QThread::msleep(2);
            }
            result.cancelled = true;
            *clearing = false;
            return result;
        };
        make();
        pressClear();
    }

    /// Presses the button, and answers the question whether that is meant.
    void pressClear(TipDialog::Result answer = TipDialog::accepted)
    {
        whenModal<TipDialog>([this, answer](TipDialog& dialog) {
            EXPECT_EQ(dialog.parent(), page);
            EXPECT_EQ(dialog.tipText(), "ClearTips");
            EXPECT_EQ(dialog.findChild<QLabel*>("tipAssistText")->text(),
                      QDir::toNativeSeparators(row->path()));
            QStringList buttons;
            for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
                EXPECT_TRUE(button->isVisible());
                buttons.append(button->text());
            }
            EXPECT_EQ(buttons, QStringList({"Cancel", "OK"}));
            dialog.done(answer);
        });
        QTest::mouseClick(row->clear, Qt::LeftButton);
    }

    FolderRow::Means means;
    QStringList asked;
    qint64 available = static_cast<qint64>(99 * gibibyte);
    // Of the thread too, which may outlive the test.
    std::shared_ptr<std::atomic<bool>> clearing = std::make_shared<std::atomic<bool>>(false);
    std::atomic<int> hanging{0};
    QPointer<QWidget> page;
    QPointer<FolderRow> row;
    QPointer<QLabel> tip;
    TipWatch watch;
};

} // namespace

TEST_F(Row, ShowsPathAndWholeGibibytesAndWarnsBelowOne)
{
    make({});
    EXPECT_FALSE(row->clear->isEnabled());
    QSignalSpy checked(row, &FolderRow::spaceChecked);
    const struct
    {
        const char* path;
        double gibibytes;
        const char* shown;
        bool usedUp;
    } cases[]{
        {"D:/a", 0.9, "RemainSpace0.0 G", true},
        {"D:/b", 1.9, "RemainSpace1.0 G", false},
        {"D:/c", 99, "RemainSpace99.0 G", false},
        {"Q:/d", -1 / gibibyte, "RemainSpace0.0 G", true}, // a drive that does not answer
        {"//server/share", 0.5, "", false},
        {"/home/e", 0.5, "", false},
        {"D:/", 1, "RemainSpace1.0 G", false},
        {"", 0.5, "", false},
    };
    for (const auto& test : cases) {
        asked.clear();
        checked.clear();
        available = static_cast<qint64>(test.gibibytes * gibibyte);
        row->setPath(test.path);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !checked.isEmpty(); })) << test.path;
        EXPECT_EQ(row->space->text(), test.shown) << test.path;
        EXPECT_EQ(tip->isVisible(), test.usedUp) << test.path;
        EXPECT_EQ(asked.size(), *test.shown ? 1 : 0) << "one query for each path";
        ASSERT_EQ(checked.size(), 1) << test.path;
        EXPECT_EQ(checked[0][0].toBool(), test.usedUp) << test.path;
        EXPECT_EQ(row->edit->cursorPosition(), 0);
        EXPECT_EQ(row->clear->isEnabled(), *test.path != 0);

        QTest::keyClicks(row->edit, "x");
        EXPECT_EQ(row->path(), test.path) << "it is for reading";
        row->setPath(test.path);
        EXPECT_EQ(checked.size(), 1) << "the path is shown already";
        EXPECT_EQ(asked.size(), *test.shown ? 1 : 0);
    }
}

TEST_F(Row, ADriveThatHangsHoldsUpNothing)
{
    std::promise<void> answer;
    means.bytesAvailable = [answered = answer.get_future().share(),
                            count = &hanging](const QString& drive) {
        if (drive == "H:") {
            ++*count;
            answered.wait();
        }
        return qint64(0);
    };
    make("H:/cache");
    QSignalSpy checked(row, &FolderRow::spaceChecked);
    row->checkSpace();
    EXPECT_EQ(row->space->text(), "");
    row->setPath("D:/cache");
    EXPECT_TRUE(QTest::qWaitFor([&] { return checked.size() == 1; }));
    row->setPath("H:/other");
    row->checkSpace();
    EXPECT_EQ(hanging, 2) << "no thread for each question";
    EXPECT_FALSE(tip->isVisible());
    answer.set_value();
    EXPECT_TRUE(QTest::qWaitFor([&] { return checked.size() == 2; }));
    EXPECT_EQ(row->space->text(), "RemainSpace0.0 G");
    EXPECT_TRUE(tip->isVisible());
}

TEST_F(Row, ClearsWhatIsInTheFolderAfterAYesOnly)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath("a/b/c"));
    const QString file = folder.filePath("a/b/目录.txt");
    writeFile(file);
    make(folder.path());
    QSignalSpy checked(row, &FolderRow::spaceChecked);

    for (const auto answer : {TipDialog::dismissed, TipDialog::cancelled}) {
        pressClear(answer);
        QTest::qWait(20);
        EXPECT_TRUE(QFile::exists(file));
        EXPECT_TRUE(checked.isEmpty());
    }
    pressClear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !checked.isEmpty(); })) << "the space is asked again";
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    EXPECT_TRUE(QFileInfo(folder.path()).isDir());
    EXPECT_TRUE(watch.tips.empty());
}

TEST_F(Row, TellsOfWhatCouldNotBeRemoved)
{
    ClearResult refused;
    refused.refused = true;
    ClearResult incomplete;
    for (int i = 0; i < 12; ++i) {
        incomplete.notRemoved.append("/kept/" + QString::number(i));
    }
    const QString folder = "/kept/目录";
    for (const auto& [result, text, named] :
         {std::tuple(refused, "ClearRefused", QDir::toNativeSeparators(folder)),
          // No more than ten, since the tip must fit on the screen.
          std::tuple(incomplete, "ClearIncomplete",
                     incomplete.notRemoved.mid(0, 10).join('\n') + "\nClearMore")}) {
        means.clear = [&result = result](const QString&, const auto&) { return result; };
        make(folder);
        watch.tips.clear();
        pressClear();
        EXPECT_TRUE(QTest::qWaitFor([&] { return watch.tips.size() == 1; })) << text;
        EXPECT_EQ(watch.tips[0].text, text);
        EXPECT_EQ(watch.tips[0].assist, named);
        EXPECT_EQ(watch.tips[0].kind, TipDialog::warning);
    }
}

TEST_F(Row, ALongClearingShowsItsProgressAndCanBeCancelled)
{
    startClearingForever();
    asked.clear();
    QTest::qWait(100);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "a quick one shows nothing";
    QTest::mouseClick(row->clear, Qt::LeftButton); // one at a time
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);

    bool closed = false;
    whenModal<QProgressDialog>([&](QProgressDialog& dialog) {
        EXPECT_TRUE(dialog.labelText().contains("cache"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(), Qt::LeftButton);
        closed = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return closed && asked.size() == 1; }));
    EXPECT_FALSE(*clearing);
    EXPECT_EQ(page->findChild<QProgressDialog*>(), nullptr);
    EXPECT_TRUE(watch.tips.empty());
}

TEST_F(Row, ItsPageMayGoOrCloseWhileItClears)
{
    for (const bool progressIsOpen : {false, true}) {
        startClearingForever();
        if (progressIsOpen) {
            EXPECT_TRUE(
                QTest::qWaitFor([] { return QApplication::activeModalWidget() != nullptr; }));
        }
        EXPECT_TRUE(QTest::qWaitFor([this] { return clearing->load(); }));
        delete page;
        EXPECT_TRUE(QTest::qWaitFor([this] { return !*clearing; })) << "the thread ends";
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
    startClearingForever();
    page->close();
    QTest::qWait(700);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_TRUE(*clearing) << "it goes on: it was asked for";
}

TEST_F(Row, ItsPageMayGoWhileItAsksOrTells)
{
    make();
    whenModal<TipDialog>([this](TipDialog& /*dialog*/) { delete page; });
    QTest::mouseClick(row->clear, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([this] { return page.isNull(); }));

    make("/nowhere"); // cannot be cleared
    watch.tips.clear();
    pressClear();
    watch.onTip = [this] { delete page; };
    EXPECT_TRUE(QTest::qWaitFor([this] { return page.isNull(); }));
    EXPECT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget() == nullptr; }));
}

TEST_F(Row, ShowsTheEndOfAPathThatIsTooLong)
{
    const QString folder = "D:/" + QString(60, 'm');
    const auto shownOf = [this](const QString& path) {
        make(path);
        row->edit->clearFocus();
        EXPECT_EQ(row->edit->cursorPosition(), 0);
        EXPECT_TRUE(row->edit->toolTip().endsWith(path.right(8)));
        return row->edit->grab().toImage();
    };
    EXPECT_NE(shownOf(folder + "/playlog"), shownOf(folder + "/storage"));
}

} // namespace folderrowtest
