#include "surface/mainwindow.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "system/tray.h"

#include "support/hostlanguage.h"
#include "support/projecttest.h"

#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>

namespace projecttest {

class Window : InEnglish, public ProjectTest
{
protected:
    Window()
    {
        window.switchLanguage("en");
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    /// Presses the button at that place of the next question; notes the question's text.
    void answer(int button)
    {
        whenModal<QMessageBox>([this, button](QMessageBox& question) {
            asked.append(question.text());
            QTest::mouseClick(question.buttons().at(button), Qt::LeftButton);
        });
    }
    enum Answer { keep, stay, drop }; // in the order of QMessageBox::buttons()

    QStringList asked;
    Peripherals peripherals{runtime, *store};
    MainWindow window{runtime, *store, *file, peripherals};
    QSignalSpy closed{&window, &MainWindow::closed};
};

TEST_F(Window, AsksBeforeChangesAreLost)
{
    file->play(3);
    answer(stay);
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(asked, QStringList{"Save the changes to “Unnamed project”?"});

    ASSERT_TRUE(saveAs(path("a&b.mivo")));
    file->play(4);
    answer(drop);
    window.menuBar()->actions().at(0)->menu()->actions().at(0)->trigger(); // New
    EXPECT_EQ(file->state().file, "");
    EXPECT_FALSE(file->state().modified);

    ASSERT_TRUE(open(path("a&b.mivo")));
    EXPECT_EQ(file->state().project.lastPlayed, 3) << "dropped";
    file->play(4);
    answer(keep);
    window.close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return closed.size() == 1; })) << "when it is saved";
    EXPECT_EQ(asked.size(), 3);
    ASSERT_TRUE(open(path("a&b.mivo")));
    EXPECT_EQ(file->state().project.lastPlayed, 4);

    window.show();
    file->play(5);
    ASSERT_FALSE(QSystemTrayIcon::isSystemTrayAvailable());
    window.showTray();
    runtime.call([this] {
        store->setNotPromptForSave(true);
        store->setCloseSoftWareMinimize(true);
    });
    window.close();
    EXPECT_EQ(closed.size(), 2) << "without a question, and there is no tray to hide to";
}

TEST_F(Window, ShowsAFailureUntilItIsDismissedAndKeepsEachMessage)
{
    const QLabel* notice = nullptr;
    for (const auto* label : window.findChildren<QLabel*>()) {
        notice = label->property("style") == "notice" ? label : notice;
    }
    EXPECT_FALSE(open(path("missing.mivo")));
    EXPECT_TRUE(notice->isVisible());
    const QString failure = notice->text();
    EXPECT_TRUE(failure.contains("missing.mivo"));
    window.settings(); // whose pages post messages, too
    runtime.call([this] {
        store->applyFadeTimes(1, 1);
        store->soundCards().reportMismatch({true, "left", "card"});
    });
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.messages().messages().size() == 3; }));
    EXPECT_EQ(notice->text(), failure);
    EXPECT_EQ(window.messages().messages()[0].text, failure.toStdString());
    QTest::mouseClick(window.findChild<QPushButton*>("dismissNotice"), Qt::LeftButton);
    EXPECT_FALSE(notice->isVisible());
    runtime.call([this] {
        store->kept.fails = true;
        store->setUndoStep(80);
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice->isVisible(); }));
    EXPECT_TRUE(notice->text().contains("disk full"));
}

TEST_F(Window, HasEveryTextInTheLanguageThatIsChosen)
{
    QStringList missing;
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    translator.setMissingTextHandler(
        [&](const QString&, const QString&, const QString& key) { missing.append(key); });
    window.showTray();
    file->play(1);
    auto* languages = window.findChild<QComboBox*>("languages");
    for (const int index : {1, 0, 1}) {
        chooseItem(languages, index);
        for (const char* key : {"ProjectNotOpened", "ProjectNotSaved", "AutomaticSaveFailed",
                                "AutostartFailed", "PowerActionFailed", "SettingNotSaved",
                                "ShortcutsNotExported", "ShortcutsNotImported"}) {
            EXPECT_TRUE(hostText(key).contains("%1")) << key;
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
    translator.setMissingTextHandler(nullptr);
    EXPECT_EQ(missing, QStringList());
    EXPECT_EQ(runtime.call([this] { return store->getLanguage(); }), "zh_cn");
    EXPECT_EQ(window.findChild<QLabel*>("playing")->text(), "正在播放：Doors open");
}

} // namespace projecttest
