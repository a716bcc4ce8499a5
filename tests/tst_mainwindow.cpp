#include "surface/mainwindow.h"

#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"
#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "system/tray.h"

#include "support/ended.h"
#include "support/hostlanguage.h"
#include "support/test.h"

#include <QtCore/QTemporaryDir>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QTreeWidget>

namespace mainwindowtest {

using namespace mivohost;

namespace {

class Window : public ::testing::Test
{
protected:
    const InEnglish english;

    Window()
    {
        auto& translator = SettingWdigetTranslateManager::instance().translator();
        translator.setMissingTextHandler(
            [this](const QString&, const QString&, const QString& key) { missing.append(key); });
        project.start();
        window.switchLanguage("en");
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    ~Window() override
    {
        SettingWdigetTranslateManager::instance().translator().setMissingTextHandler(nullptr);
    }

    /// Presses the button at that place of the next question; notes the question's text.
    void answer(int button)
    {
        whenModal<QMessageBox>([this, button](QMessageBox& question) {
            asked.append(question.text());
            QTest::mouseClick(question.buttons().at(button), Qt::LeftButton);
        });
    }
    enum Answer { save, stay, drop }; // in the order of QMessageBox::buttons()

    bool open(const QString& file)
    {
        return ended([&](const auto& done) { project.open(file, done); });
    }
    bool saveAs(const QString& file)
    {
        return ended([&](const auto& done) { project.saveAs(file, done); });
    }

    LogCapture log;
    QTemporaryDir folder;
    QStringList missing;
    QStringList asked;
    RuntimeThread runtime;
    TestStore store;
    ProjectFile project{runtime, store};
    Peripherals peripherals{runtime, store};
    MainWindow window{runtime, store, project, peripherals};
    QSignalSpy closed{&window, &MainWindow::closed};
};

} // namespace

TEST_F(Window, AsksBeforeChangesAreLost)
{
    project.play(3);
    answer(stay);
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(asked, QStringList{"Save the changes to “Unnamed project”?"});

    const QString file = folder.filePath("a&b.mivo");
    ASSERT_TRUE(saveAs(file));
    project.play(4);
    answer(drop);
    window.menuBar()->actions().at(0)->menu()->actions().at(0)->trigger(); // New
    EXPECT_EQ(project.state().file, "");
    EXPECT_FALSE(project.state().modified);

    ASSERT_TRUE(open(file));
    EXPECT_EQ(project.state().project.lastPlayed, 3) << "dropped";
    project.play(4);
    answer(save);
    window.close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return closed.size() == 1; })) << "when it is saved";
    EXPECT_EQ(asked.size(), 3);
    ASSERT_TRUE(open(file));
    EXPECT_EQ(project.state().project.lastPlayed, 4);

    window.show();
    project.play(5);
    ASSERT_FALSE(QSystemTrayIcon::isSystemTrayAvailable());
    window.showTray();
    runtime.call([this] {
        store.setNotPromptForSave(true);
        store.setCloseSoftWareMinimize(true);
    });
    window.close();
    EXPECT_EQ(closed.size(), 2) << "without a question, and there is no tray to hide to";
}

TEST_F(Window, OpensRecentFilesFromItsMenu)
{
    ASSERT_TRUE(saveAs(folder.filePath("one.mivo")));
    ASSERT_TRUE(saveAs(folder.filePath("two.mivo")));
    auto* menu = window.menuBar()->actions().at(0)->menu();
    emit menu->aboutToShow();
    auto* recent = menu->actions().at(2)->menu();
    ASSERT_EQ(recent->actions().size(), 2);
    recent->actions().at(1)->trigger();
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return project.state().file == folder.filePath("one.mivo"); }));
    EXPECT_TRUE(window.windowTitle().startsWith("one[*]"));
}

TEST_F(Window, ShowsAFailureUntilItIsDismissedAndKeepsEachMessage)
{
    const QLabel* notice = nullptr;
    for (const auto* label : window.findChildren<QLabel*>()) {
        notice = label->property("style") == "notice" ? label : notice;
    }
    EXPECT_FALSE(open(folder.filePath("missing.mivo")));
    EXPECT_TRUE(notice->isVisible());
    const QString failure = notice->text();
    EXPECT_TRUE(failure.contains("missing.mivo"));
    window.settings(); // whose pages post messages, too
    runtime.call([this] {
        store.applyFadeTimes(1, 1);
        store.soundCards().reportMismatch({true, "left", "card"});
    });
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.messages().messages().size() == 3; }));
    EXPECT_EQ(notice->text(), failure);
    using namespace velorn::msgcenter;
    EXPECT_EQ(window.messages().messages()[0].kind, MsgWarning);
    EXPECT_EQ(window.messages().messages()[0].text, failure.toStdString());
    EXPECT_EQ(window.messages().messages()[1].kind, MsgInformation);
    QTest::mouseClick(window.findChild<QPushButton*>("dismissNotice"), Qt::LeftButton);
    EXPECT_FALSE(notice->isVisible());
    runtime.call([this] {
        store.kept.fails = true;
        store.setUndoStep(80);
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice->isVisible(); }));
    EXPECT_TRUE(notice->text().contains("disk full"));
}

TEST_F(Window, HasEveryTextInTheLanguageThatIsChosen)
{
    window.showTray();
    project.play(1);
    auto* languages = window.findChild<QComboBox*>("languages");
    for (const int index : {1, 0, 1}) {
        languages->setCurrentIndex(index);
        emit languages->activated(index);
        for (const char* key : {"ProjectNotOpened", "ProjectNotSaved", "AutomaticSaveFailed",
                                "AutostartFailed", "PowerActionFailed", "SettingNotSaved",
                                "ShortcutsNotExported", "ShortcutsNotImported"}) {
            window.showNotice(key, "the reason");
            QCoreApplication::processEvents();
            EXPECT_NE(window.messages().messages().back().text.find("the reason"),
                      std::string::npos)
                << key;
        }
        for (const char* reason :
             {"0 is no port", "a program has no id of its own", "no such folder",
              "not a project file", "the file was replaced or removed",
              "written by a later version", "no answer", "a file is still being opened or saved",
              "the open project has been changed meanwhile"}) {
            EXPECT_EQ(reasonText(reason) == reason, index == 0) << reason;
        }
        for (const char* key :
             {"DataInUse", "KeyHint", "MidiHint", "MidiNoDevice", "MidiOff", "DmxHint", "DmxOff",
              "OscHint", "OscOff", "ShortcutFiles", "ClearShortcutsQuestion",
              "ImportShortcutsQuestion", "FileTooLarge"}) {
            hostText(key);
        }
    }
    EXPECT_EQ(missing, QStringList());
    EXPECT_EQ(runtime.call([this] { return store.getLanguage(); }), "zh_cn");
    EXPECT_EQ(window.findChild<QLabel*>("playing")->text(), "正在播放：Doors open");
}

} // namespace mainwindowtest
