#include "surface/mainwindow.h"

#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"
#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "system/tray.h"

#include "support/dialogs.h"
#include "support/ended.h"
#include "support/hostlanguage.h"
#include "support/logcapture.h"
#include "support/teststore.h"

#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTranslator>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QTreeWidget>

namespace mainwindowtest {

using namespace mivohost;

namespace {

/// Notes what Qt's file dialogs ask for and no language file has. Installed before those files.
class Untranslated : public QTranslator
{
public:
    Untranslated() { QCoreApplication::installTranslator(this); }
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        static const QStringList ofFileDialogs{"QFileDialog", "QFileSystemModel", "QPlatformTheme"};
        // Keys are the same in all languages.
        if (ofFileDialogs.contains(context) && qstrncmp(text, "Alt+", 4) != 0) {
            texts.insert(QStringLiteral("%1: %2").arg(context, text));
        }
        return {};
    }
    bool isEmpty() const override { return false; }

    mutable QSet<QString> texts;
};

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
        return ended([&](const ProjectFile::Done& done) { project.open(file, done); });
    }
    bool saveAs(const QString& file)
    {
        return ended([&](const ProjectFile::Done& done) { project.saveAs(file, done); });
    }

    QString playing() { return window.findChild<QLabel*>("playing")->text(); }

    LogCapture log;
    const Untranslated untranslated;
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
    EXPECT_EQ(asked.size(), 4);
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
    runtime.call([this] { store.applyFadeTimes(1, 1); });
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.messages().messages().size() == 2; }));
    EXPECT_EQ(notice->text(), failure);
    using namespace velorn::msgcenter;
    EXPECT_EQ(window.messages().messages()[0].kind, MsgWarning);
    EXPECT_EQ(window.messages().messages()[0].text, failure.toStdString());
    EXPECT_EQ(window.messages().messages()[1].kind, MsgInformation);
    QTest::mouseClick(window.findChild<QPushButton*>("dismissNotice"), Qt::LeftButton);
    EXPECT_FALSE(notice->isVisible());
}

TEST_F(Window, HasEveryTextInBothLanguages)
{
    window.showTray();
    project.play(1);
    for (const char* language : {"en", "zh_cn"}) {
        window.switchLanguage(language);
        for (const char* key : {"ProjectNotOpened", "ProjectNotSaved", "AutomaticSaveFailed",
                                "AutostartFailed", "PowerActionFailed", "SettingNotSaved",
                                "ShortcutsNotExported", "ShortcutsNotImported"}) {
            window.showNotice(key, "the reason");
            bool shown = false;
            for (const auto* label : window.findChildren<QLabel*>()) {
                shown = shown || label->text().contains("the reason");
            }
            EXPECT_TRUE(shown) << key;
        }
        for (const char* reason :
             {"0 is no port", "a program has no id of its own", "no such folder",
              "not a project file", "the file was replaced or removed",
              "written by a later version", "no answer", "a file is still being opened or saved",
              "the open project has been changed meanwhile"}) {
            EXPECT_EQ(reasonText(reason) == reason, language == QLatin1String("en")) << reason;
        }
        for (const char* key :
             {"DataInUse", "KeyHint", "MidiHint", "MidiNoDevice", "MidiOff", "DmxHint", "DmxOff",
              "OscHint", "OscOff", "ShortcutFiles", "ClearShortcutsQuestion",
              "ImportShortcutsQuestion", "FileTooLarge"}) {
            EXPECT_FALSE(hostText(key).isEmpty());
        }
        answer(stay);
        window.close();
        project.create();
        project.play(1);
    }
    untranslated.texts.clear();
    answer(drop);
    for (const int action : {1, 4}) { // Open and Save As
        whenModal<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
        window.menuBar()->actions().at(0)->menu()->actions().at(action)->trigger();
    }
    const auto texts = untranslated.texts.values();
    EXPECT_TRUE(texts.isEmpty()) << texts.join('\n').toStdString();
    EXPECT_TRUE(missing.isEmpty()) << missing.join(' ').toStdString();
    EXPECT_EQ(asked.at(1), QStringLiteral("是否保存对“未命名项目”的更改？"));
    EXPECT_EQ(playing(), QStringLiteral("正在播放：开放入场"));
}

} // namespace mainwindowtest
