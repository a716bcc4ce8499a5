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

class Row : public ::testing::Test
{
protected:
    ~Row() override { delete page; }

    /// A new page with a row.
    void make(const QString& path)
    {
        delete page;
        page = new QWidget;
        tip = new QLabel("full");
        row = new FolderRow(page, tip, dependencies);
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
        dependencies.clear = [clearing = clearing](const QString&, const auto& goOn) {
            for (*clearing = true; goOn(0);) {
                QThread::msleep(2);
            }
            *clearing = false;
            return ClearResult();
        };
        make("/cache");
        pressClear();
        EXPECT_TRUE(QTest::qWaitFor([this] { return clearing->load(); }));
    }

    /// Presses the button, and answers the question whether that is meant.
    void pressClear(TipDialog::Result answer = TipDialog::accepted)
    {
        whenModal<TipDialog>([this, answer](TipDialog& dialog) {
            EXPECT_EQ(dialog.parent(), page);
            EXPECT_EQ(dialog.tipText(), "ClearTips");
            EXPECT_EQ(dialog.findChild<QLabel*>("tipAssistText")->text(),
                      QDir::toNativeSeparators(row->path()));
            const auto buttons = dialog.findChildren<QPushButton*>();
            EXPECT_EQ(buttons[0]->text() + buttons[1]->text(), "CancelOK");
            EXPECT_TRUE(buttons[0]->isVisible() && buttons[1]->isVisible());
            dialog.done(answer);
        });
        QTest::mouseClick(row->clear, Qt::LeftButton);
    }

    FolderRow::Dependencies dependencies;
    // Of the thread too, which may outlive the test.
    std::shared_ptr<std::atomic<bool>> clearing = std::make_shared<std::atomic<bool>>(false);
    QPointer<QWidget> page;
    QPointer<FolderRow> row;
    QPointer<QLabel> tip;
    TipWatch watch;
};

} // namespace

TEST_F(Row, ShowsPathAndWholeGibibytesAndWarnsBelowOne)
{
    constexpr double gibibyte = 1 << 30;
    double gibibytesFree = 0;
    QStringList asked;
    dependencies.bytesAvailable = [&](const QString& drive) {
        asked.append(drive);
        return static_cast<qint64>(gibibytesFree * gibibyte);
    };
    make({});
    EXPECT_FALSE(row->clear->isEnabled());
    QSignalSpy checked(row, &FolderRow::spaceChecked);
    const struct
    {
        QString path;
        double gibibytes;
        const char* shown;
        bool usedUp;
    } cases[]{{"D:/a", 0.9, "RemainSpace0.0 G", true},
              {"D:/b", 1.9, "RemainSpace1.0 G", false},
              {"Q:/c", -1 / gibibyte, "RemainSpace0.0 G", true}, // a drive that does not answer
              {"//server/share", 0.5, "", false},
              {"D:/", 99, "RemainSpace99.0 G", false},
              {"", 0.5, "", false}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.path.toStdString());
        asked.clear();
        checked.clear();
        gibibytesFree = test.gibibytes;
        row->setPath(test.path);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !checked.isEmpty(); }));
        row->setPath(test.path); // is shown already
        QTest::keyClicks(row->edit, "x");
        EXPECT_EQ(row->path(), test.path) << "it is for reading";
        EXPECT_EQ(row->space->text(), test.shown);
        EXPECT_EQ(tip->isVisible(), test.usedUp);
        EXPECT_EQ(asked, *test.shown ? QStringList(test.path.left(2)) : QStringList());
        ASSERT_EQ(checked.size(), 1);
        EXPECT_EQ(checked[0][0].toBool(), test.usedUp);
        EXPECT_EQ(row->clear->isEnabled(), !test.path.isEmpty());
    }
}

TEST_F(Row, ADriveThatHangsHoldsUpNothing)
{
    std::promise<void> answer;
    std::atomic<int> hanging{0};
    dependencies.bytesAvailable = [answered = answer.get_future().share(),
                                   &hanging](const QString& drive) {
        if (drive == "H:") {
            ++hanging;
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
    EXPECT_TRUE(tip->isVisible());
}

TEST_F(Row, ClearsWhatIsInTheFolderAfterAYesOnly)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("目录.txt");
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
    for (const auto& [result, text, named] :
         {std::tuple(refused, "ClearRefused", QDir::toNativeSeparators("/kept")),
          // No more than ten, since the tip must fit on the screen.
          std::tuple(incomplete, "ClearIncomplete",
                     incomplete.notRemoved.mid(0, 10).join('\n') + "\nClearMore")}) {
        dependencies.clear = [result = result](const QString&, const auto&) { return result; };
        make("/kept");
        watch.tips.clear();
        pressClear();
        EXPECT_TRUE(QTest::qWaitFor([&] { return watch.tips.size() == 1; })) << text;
        EXPECT_EQ(watch.tips[0].text, text);
        EXPECT_EQ(watch.tips[0].assist, named);
        EXPECT_EQ(watch.tips[0].kind, TipDialog::warning);
    }
    make("/kept");
    pressClear();
    watch.onTip = [this] { delete page; };
    EXPECT_TRUE(QTest::qWaitFor([this] { return page.isNull(); }));
}

TEST_F(Row, ALongClearingIsCancelledByItsUserOrByTheEndOfItsPage)
{
    for (const bool byUser : {true, false}) {
        startClearingForever();
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "a quick one shows nothing";
        QTest::mouseClick(row->clear, Qt::LeftButton); // one at a time
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        whenModal<QProgressDialog>([this, byUser](QProgressDialog& dialog) {
            EXPECT_TRUE(dialog.labelText().contains("cache"));
            byUser ? dialog.findChild<QPushButton*>()->click() : page->deleteLater();
        });
        EXPECT_TRUE(QTest::qWaitFor([this] { return !*clearing; })) << "the thread ends";
        EXPECT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget() == nullptr; }));
        EXPECT_EQ(page.isNull(), !byUser);
        EXPECT_TRUE(watch.tips.empty());
    }
    make("/cache");
    whenModal<TipDialog>([this](TipDialog& /*dialog*/) { delete page; });
    QTest::mouseClick(row->clear, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([this] { return page.isNull(); }));
}

} // namespace folderrowtest
