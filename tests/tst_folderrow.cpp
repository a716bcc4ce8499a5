#include "folders/folderrow.h"

#include "folders/folderselection.h"

#include "support/test.h"

#include <mivowidgets/alertlabel.h>

namespace folderrowtest {

using namespace mivo::settings;
using mivo::qutils::ClearResult;
using mivo::widgets::PushButton;
using mivo::widgets::TipDialog;

struct Row : ::testing::Test
{
    ~Row() override { delete page; }

    void make(const QString& path)
    {
        delete page;
        page = new QWidget;
        tip = new PushButton("full");
        row = new FolderRow(page, tip, dependencies);
        row->setParent(page);
        page->setLayout(row->layout);
        row->addTexts("Cache", [](const char* key, const std::function<void(const QString&)>& set) {
            set(QString::fromLatin1(key));
        });
        activateWindow(page);
        row->setPath(path);
    }

    /// Presses the button, and answers the question whether that is meant.
    void pressClear(TipDialog::Result answer = TipDialog::accepted)
    {
        whenModal<TipDialog>([this, answer](TipDialog& dialog) {
            EXPECT_EQ(dialog.tipText(), "ClearTips");
            EXPECT_EQ(dialog.findChild<QLabel*>("tipAssistText")->text(),
                      QDir::toNativeSeparators(row->path()));
            dialog.done(answer);
        });
        QTest::mouseClick(row->clear, Qt::LeftButton);
    }

    FolderRow::Dependencies dependencies;
    QPointer<QWidget> page;
    QPointer<FolderRow> row;
    QPointer<PushButton> tip;
    TipWatch watch;
};

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
    for (const auto& [path, gibibytes, shown, usedUp] :
         {std::tuple("D:/a", 0.9, "RemainSpace0.0 G", true),
          {"D:/b", 1.9, "RemainSpace1.0 G", false},
          {"Q:/c", -1 / gibibyte, "RemainSpace0.0 G", true}, // a drive that does not answer
          {"//server/share", 0.5, "", false},
          {"", 0.5, "", false}}) {
        SCOPED_TRACE(path);
        asked.clear();
        checked.clear();
        gibibytesFree = gibibytes;
        row->setPath(path);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !checked.isEmpty(); }));
        row->setPath(path); // is shown already
        EXPECT_EQ(checked, (QList<QVariantList>{{usedUp}}));
        EXPECT_EQ(row->space->text(), shown);
        EXPECT_EQ(tip->isVisible(), usedUp);
        const auto* spoken = tip->findChild<mivo::widgets::AlertLabel*>(); // as it is a button
        EXPECT_EQ(spoken != nullptr && spoken->isVisible() && spoken->text() == "full", usedUp);
        EXPECT_EQ(asked.join(' '), *shown != '\0' ? QString(path).left(2) : "");
        EXPECT_EQ(row->clear->isEnabled(), *path != '\0');
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return hanging == 2; }));
    EXPECT_TRUE(!tip->isVisible() && row->space->text().isEmpty());
    answer.set_value();
    EXPECT_TRUE(QTest::qWaitFor([&] { return checked.size() == 2; }));
    EXPECT_EQ(hanging, 2) << "no thread for each question";
    EXPECT_TRUE(tip->isVisible());
}

TEST_F(Row, ClearsWhatIsInTheFolderAfterAYesOnly)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("目录.txt");
    writeFile(file);
    make({});
    QSignalSpy checked(row, &FolderRow::spaceChecked);
    row->setPath(folder.path());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !checked.isEmpty(); }));
    checked.clear();
    pressClear(TipDialog::cancelled);
    QTest::qWait(20);
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_TRUE(checked.isEmpty());
    pressClear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !checked.isEmpty(); })) << "the space is asked again";
    EXPECT_TRUE(QDir(folder.path()).isEmpty() && watch.tips.isEmpty());
}

TEST_F(Row, TellsOfWhatCouldNotBeRemoved)
{
    ClearResult refused;
    refused.refused = true;
    ClearResult incomplete;
    for (int i = 0; i < 12; ++i) {
        incomplete.notRemoved.append("/kept/" + QString::number(i));
    }
    // No more than ten, since the tip must fit on the screen.
    const QString ten = incomplete.notRemoved.mid(0, 10).join('\n') + "\nClearMore";
    for (const auto& [result, tip] :
         {std::pair(refused, "ClearRefused|" + QDir::toNativeSeparators("/kept|2")),
          std::pair(incomplete, "ClearIncomplete|" + ten + "|2")}) {
        dependencies.clear = [result = result](const QString&, const auto&) { return result; };
        make("/kept");
        watch.tips.clear();
        pressClear();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !watch.tips.isEmpty(); })) << tip;
        EXPECT_EQ(watch.tips, QStringList(tip));
    }
}

TEST_F(Row, ALongClearingIsCancelledByItsUserOrByTheEndOfItsPage)
{
    // Of the thread too, which may outlive the test.
    const auto clearing = std::make_shared<std::atomic<bool>>(false);
    const auto hanging = std::make_shared<std::atomic<bool>>();
    dependencies.clear = [clearing, hanging](const QString&, const auto& goOn) {
        for (*clearing = true; goOn(0) || *hanging;) {
            QThread::msleep(2);
        }
        *clearing = false;
        return ClearResult();
    };
    for (const bool byUser : {true, false}) {
        *hanging = true;
        make("/cache");
        pressClear();
        EXPECT_TRUE(QTest::qWaitFor([&] { return clearing->load(); }));
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "a quick one shows nothing";
        QTest::mouseClick(row->clear, Qt::LeftButton); // one at a time
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        if (byUser) { // who sees it on the second press
            page->hide();
            QTest::qWait(600);
            EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
            page->show();
            QTest::mouseClick(row->clear, Qt::LeftButton);
            row->clear->click();
            EXPECT_EQ(page->findChildren<QProgressDialog*>().size(), 1);
        }
        bool isTold = false;
        whenModal<QProgressDialog>([&](QProgressDialog& dialog) {
            EXPECT_TRUE(dialog.labelText().contains("cache"));
            byUser ? dialog.findChild<QPushButton*>()->click() : page->deleteLater();
            isTold = true;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return isTold; }));
        if (byUser) {
            pressClear(TipDialog::cancelled); // a folder that hangs does not hold up the next one
        }
        *hanging = false;
        EXPECT_TRUE(QTest::qWaitFor([&] { return !*clearing; })) << "the thread ends";
        EXPECT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget() == nullptr; }));
        EXPECT_EQ(page.isNull(), !byUser);
        EXPECT_TRUE(watch.tips.isEmpty());
    }
    make("/cache");
    whenModal<TipDialog>([this](TipDialog& /*dialog*/) { delete page; });
    QTest::mouseClick(row->clear, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([this] { return page.isNull(); }));

    const QTemporaryDir folder;
    make({});
    QObject::connect(row, &FolderRow::spaceChecked, page, [this] { delete page; });
    whenModal<QFileDialog>([&](QFileDialog& dialog) { chooseFolder(dialog, folder.path()); });
    row->choose(projectFolderRules, "/sub", [](const QString& path) {
        ADD_FAILURE() << "written for a page that is gone: " << path;
        return false;
    });
    EXPECT_TRUE(page.isNull());
}

} // namespace folderrowtest
