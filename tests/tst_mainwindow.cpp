#include "surface/mainwindow.h"

#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "runtime/runtimethread.h"
#include "surface/hosttext.h"
#include "system/tray.h"

#include "support/dialogs.h"
#include "support/hostlanguage.h"
#include "support/logcapture.h"
#include "support/teststore.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
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

    QString playing() { return window.findChild<QLabel*>("playing")->text(); }

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

TEST_F(Window, PlaysByKeyboardAndByDoubleClick)
{
    auto* programs = window.findChild<QTreeWidget*>();
    EXPECT_EQ(QApplication::focusWidget(), programs);
    QTest::keyClick(programs, Qt::Key_Return);
    EXPECT_EQ(playing(), "Nothing is playing") << "a group";
    QTest::keyClick(programs, Qt::Key_Down);
    QTest::keyClick(programs, Qt::Key_Return);
    EXPECT_EQ(playing(), "Playing: Doors open");
    EXPECT_TRUE(window.isWindowModified());

    auto* finale = programs->topLevelItem(1)->child(3);
    const QPoint at = programs->visualItemRect(finale).center();
    QTest::mouseClick(programs->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(programs->viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(playing(), "Playing: Finale");
    EXPECT_TRUE(finale->font(0).bold());
    EXPECT_EQ(programs->currentItem(), finale);
}

TEST_F(Window, AsksBeforeChangesAreLost)
{
    project.play(3);
    answer(stay);
    window.close();
    EXPECT_TRUE(window.isVisible());
    answer(stay);
    window.quit();
    EXPECT_TRUE(closed.isEmpty());
    EXPECT_EQ(asked, (QStringList{"Save the changes to “Unnamed project”?",
                                  "Save the changes to “Unnamed project”?"}));

    const QString file = folder.filePath("a&b.mivo");
    ASSERT_TRUE(project.saveAs(file));
    project.play(4);
    answer(drop);
    window.menuBar()->actions().at(0)->menu()->actions().at(0)->trigger(); // New
    EXPECT_EQ(project.state().file, "");
    EXPECT_FALSE(project.state().modified);

    ASSERT_TRUE(project.open(file));
    EXPECT_EQ(project.state().project.lastPlayed, 3) << "dropped";
    project.play(4);
    answer(save);
    window.close();
    EXPECT_EQ(closed.size(), 1);
    EXPECT_EQ(asked.size(), 4);
    ASSERT_TRUE(project.open(file));
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
    ASSERT_TRUE(project.saveAs(folder.filePath("one.mivo")));
    ASSERT_TRUE(project.saveAs(folder.filePath("two.mivo")));
    auto* menu = window.menuBar()->actions().at(0)->menu();
    emit menu->aboutToShow();
    auto* recent = menu->actions().at(2)->menu();
    ASSERT_EQ(recent->actions().size(), 2);
    recent->actions().at(1)->trigger();
    EXPECT_EQ(project.state().file, folder.filePath("one.mivo"));
    EXPECT_TRUE(window.windowTitle().startsWith("one[*]"));
}

TEST_F(Window, HasEveryTextInBothLanguages)
{
    window.showTray();
    project.play(1);
    for (const char* language : {"en", "zh_cn"}) {
        window.switchLanguage(language);
        for (const char* key :
             {"ProjectNotOpened", "ProjectNotSaved", "AutomaticSaveFailed", "AutostartFailed",
              "PowerActionFailed", "SettingNotSaved", "FadeTimesApplied", "ShortcutsNotExported",
              "ShortcutsNotImported"}) {
            window.showNotice(key, "the reason");
            bool shown = false;
            for (const auto* label : window.findChildren<QLabel*>()) {
                shown = shown || label->text().contains("the reason");
            }
            EXPECT_TRUE(shown) << key;
        }
        for (const char* key :
             {"KeyHint", "MidiHint", "MidiNoDevice", "MidiOff", "DmxHint", "DmxOff", "OscHint",
              "OscOff", "ShortcutFiles", "ClearShortcutsQuestion", "ImportShortcutsQuestion",
              "FileTooLarge"}) {
            EXPECT_FALSE(hostText(key).isEmpty());
        }
        answer(stay);
        window.close();
        project.create();
        project.play(1);
    }
    EXPECT_TRUE(missing.isEmpty()) << missing.join(' ').toStdString();
    EXPECT_EQ(asked.at(1), QStringLiteral("是否保存对“未命名项目”的更改？"));
    EXPECT_EQ(playing(), QStringLiteral("正在播放：开放入场"));
}

} // namespace mainwindowtest
