#include "project/project.h"
#include "store/sqlitepersistence.h"

#include "support/rfbclient.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include "surface/settingsview.h"

#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivowidgets/spineditbox.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtNetwork/QTcpServer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <csignal>

namespace {

/// The reference host as its own process, with a person in front of it.
class Program
{
public:
    explicit Program(const QString& store, const QStringList& more = {})
    {
        QTcpServer probe; // a port that is free right now
        probe.listen(QHostAddress::LocalHost);
        m_port = probe.serverPort();
        probe.close();
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM",
                           QStringLiteral("vnc:port=%1:size=1280x900").arg(m_port));
        environment.insert("LANG", "C.UTF-8");
        environment.insert("XDG_CONFIG_HOME", QFileInfo(store).absolutePath() + "/config");
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(MIVOHOST_PROGRAM, QStringList{"--store", store} + more);
    }

    ~Program() { kill(); }

    bool hasScreen() { return m_person.connectTo(m_port); }
    RfbClient& person() { return m_person; }

    /// Waits until the program has said `text`, from where the last call left off.
    bool says(const QByteArray& text)
    {
        QElapsedTimer elapsed;
        elapsed.start();
        while (!m_said.contains(text) && elapsed.elapsed() < 20000) {
            m_process.waitForReadyRead(200);
            m_said += m_process.readAll();
        }
        const auto at = m_said.indexOf(text);
        if (at >= 0) {
            m_said.remove(0, at + text.size());
        }
        return at >= 0;
    }

    bool ends() { return m_process.waitForFinished(20000); }
    int exitCode() const { return m_process.exitCode(); }
    QByteArray output() { return m_said + m_process.readAll(); }

    void kill()
    {
        if (m_process.state() != QProcess::NotRunning) {
            ::kill(static_cast<pid_t>(m_process.processId()), SIGKILL);
            m_process.waitForFinished();
        }
    }

private:
    quint16 m_port = 0;
    QProcess m_process;
    QByteArray m_said;
    RfbClient m_person;
};

class Host : public ::testing::Test
{
protected:
    /// Runs the program to its end without a screen.
    int run(const QStringList& arguments, QByteArray& output)
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(environment);
        process.start(MIVOHOST_PROGRAM, QStringList{"--store", store()} + arguments);
        process.waitForFinished(60000);
        output = process.readAllStandardOutput();
        return process.exitCode();
    }

    QString store() const { return folder.filePath("settings.sqlite"); }

    QTemporaryDir folder;
};

/// The Tab keys that lead from the dialog's first focus to the undo steps, found in a dialog of
/// this process.
int tabsToUndoSteps()
{
    TestRuntime runtime;
    // With folders, as the host has them: some buttons are disabled without.
    TestStore store(
        {{"autoSavePath", "/a"}, {"playLogPath", "/b"}, {"cachePath", "/c"}, {"sharePath", "/d"}});
    mivohost::SettingsView view(runtime, store, nullptr);
    view.dialog().show();
    view.dialog().activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&view.dialog()));
    const auto* page = view.dialog().findChild<mivo::settings::UndoSettingBox*>();
    const auto* undoSteps = page->findChild<mivo::widgets::SpinEditBox*>();
    int tabs = 0;
    do {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &view.dialog(), Qt::Key_Tab);
        ++tabs;
    } while (QApplication::focusWidget() != undoSteps && tabs < 200);
    EXPECT_LT(tabs, 200);
    return tabs;
}

void reachUndoSteps(RfbClient& person)
{
    static const int tabs = tabsToUndoSteps();
    for (int i = 0; i < tabs; ++i) {
        person.key(RfbClient::tab);
    }
}

} // namespace

TEST_F(Host, KeepsAnEditThroughAKillAndShowsItAgain)
{
    {
        Program program(store(), {"--settings"});
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("settings dialog open"));
        reachUndoSteps(program.person());
        program.person().type("80");
        program.person().key(RfbClient::tab);
        ASSERT_TRUE(program.says("setting undoStep = 80")) << program.output().constData();
        program.kill();
    }
    QByteArray output;
    ASSERT_EQ(run({"--print-settings"}, output), 0);
    EXPECT_TRUE(output.contains("undoStep=80\n")) << output.constData();

    // The control shows it: one step up from what it shows is 81.
    Program again(store(), {"--settings"});
    ASSERT_TRUE(again.hasScreen());
    ASSERT_TRUE(again.says("settings dialog open"));
    reachUndoSteps(again.person());
    again.person().key(RfbClient::up);
    again.person().key(RfbClient::enter);
    EXPECT_TRUE(again.says("setting undoStep = 81")) << again.output().constData();
}

TEST_F(Host, TheSecondOnTheSameStoreSaysSoAndStops)
{
    Program first(store(), {"--settings"});
    ASSERT_TRUE(first.hasScreen());
    ASSERT_TRUE(first.says("settings dialog open"));

    Program second(store());
    ASSERT_TRUE(second.hasScreen());
    EXPECT_TRUE(second.says("is in use by another mivohost")) << second.output().constData();
    second.person().key(RfbClient::enter);
    ASSERT_TRUE(second.ends()) << "the message is closed by Return, and the program with it";
    EXPECT_EQ(second.exitCode(), 2);

    QByteArray output;
    EXPECT_EQ(run({"--print-settings"}, output), 2);
}

TEST_F(Host, PutsAnUnreadableStoreAside)
{
    QFile file(store());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();
    Program program(store());
    ASSERT_TRUE(program.hasScreen());
    EXPECT_TRUE(program.says("put aside as")) << program.output().constData();
    EXPECT_EQ(QDir(folder.path()).entryList({"settings.sqlite.unreadable-*"}).size(), 1);
}

TEST_F(Host, DrawsEveryPageInEveryLanguage)
{
    QByteArray output;
    const QString pictures = folder.filePath("pictures");
    ASSERT_EQ(run({"--pictures", pictures}, output), 0);
    for (const char* name :
         {"mainwindow", "undosettingbox", "onlinesettingbox", "resplaycontrolsettingbox",
          "generalsettingbox", "displaycontrolsettingbox", "codeccontrolsettingbox"}) {
        QImage english(pictures + '/' + name + "-en.png");
        QImage chinese(pictures + '/' + name + "-zh_cn.png");
        EXPECT_FALSE(english.isNull()) << name;
        EXPECT_EQ(english.size(), chinese.size()) << name;
        EXPECT_NE(english, chinese) << name;
    }
    EXPECT_EQ(QImage(pictures + "/undosettingbox-en.png").size(), QSize(1080, 800));
    EXPECT_NE(run({"--pictures", "/proc/no/such"}, output), 0);
}

TEST_F(Host, StartsAsItsSettingsSayAndPlaysOnAKey)
{
    const QString project = folder.filePath("show.mivo");
    {
        QFile file(project);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(mivohost::projectToJson({{{"Group", {{5, "Five"}, {6, "Six"}}}}, {}, 6}));
        auto opened = mivohost::SqlitePersistence::open(store());
        ASSERT_TRUE(opened.persistence);
        for (const auto& [key, value] :
             std::vector<std::pair<QString, QVariant>>{{"openRecentFiles", 1},
                                                       {"openProjectFileDefaultPlay", 1},
                                                       {"recentProjectFiles", project},
                                                       {"autoStart", 1}}) {
            ASSERT_TRUE(opened.persistence->write(key, value));
        }
    }
    Program program(store());
    ASSERT_TRUE(program.hasScreen());
    EXPECT_TRUE(program.says("playing program Six")) << program.output().constData();
    // The window is there when it takes keys: the programs have the focus from the start.
    constexpr quint32 down = 0xff54;
    program.person().key(down);
    program.person().key(RfbClient::enter);
    EXPECT_TRUE(program.says("playing program Five")) << program.output().constData();
    QFile entry(folder.filePath("config/autostart/mivohost.desktop"));
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    EXPECT_TRUE(entry.readAll().contains("\"--start-delay\" \"0\"\n"));
}

TEST_F(Host, CountsDownToAScheduledRestartAndCarriesItOutWhenToldTo)
{
    {
        auto opened = mivohost::SqlitePersistence::open(store());
        ASSERT_TRUE(opened.persistence);
        const QString soon = QTime::currentTime().addSecs(4).toString("hh:mm:ss");
        ASSERT_TRUE(opened.persistence->write("timedAutomaticRestart", "1|0|0|" + soon));
    }
    Program program(store());
    ASSERT_TRUE(program.hasScreen());
    ASSERT_TRUE(program.says("is due")) << program.output().constData();
    QTest::qWait(1500);                   // the prompt opens
    program.person().key(RfbClient::tab); // from the button that cancels to the other one
    program.person().key(RfbClient::enter);
    EXPECT_TRUE(program.says("would restart the machine now")) << program.output().constData();
}

TEST_F(Host, WaitsBeforeItOpensAnything)
{
    QByteArray output;
    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_EQ(run({"--start-delay", "1", "--print-settings"}, output), 0);
    EXPECT_GE(elapsed.elapsed(), 1000);
    EXPECT_TRUE(output.contains("/projectbackups\n")) << output.constData();
    for (const char* wrong : {"-1", "301", "soon", ""}) {
        EXPECT_EQ(run({"--start-delay", wrong, "--print-settings"}, output), 1) << wrong;
    }
}
