#include "system/autostart.h"

#include "mivohostkit/runtimethread.h"
#include "system/tray.h"

#include "support/files.h"
#include "support/logcapture.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace autostarttest {

using mivohost::Autostart;

// By the rules of desktop entries: quotes around each argument, in it a backslash before ", `, $
// and \, and %% for %; on all of that the escapes of a value: \\, \n, \t and \r.
TEST(AutostartEntry, StartsExactlyThisProgramWithTheseArguments)
{
    const std::pair<const char*, const char*> cases[]{
        {"/usr/bin/mivohost", R"("/usr/bin/mivohost")"},
        {"", R"("")"},
        {"/opt/show control/it's", R"("/opt/show control/it's")"},
        {"/opt/播放/;&|<>*?#()~", R"("/opt/播放/;&|<>*?#()~")"},
        {"/opt/100%/%u%1", R"("/opt/100%%/%%u%%1")"},
        {"/opt/\"quoted\"", R"("/opt/\\"quoted\\"")"},
        {R"(/opt/back\slash\\two)", R"("/opt/back\\\\slash\\\\\\\\two")"},
        {"/opt/$HOME/`id`", R"("/opt/\\$HOME/\\`id\\`")"},
        {"/opt/a\tb\nc\rd", R"("/opt/a\tb\nc\rd")"},
    };
    for (const auto& [text, quoted] : cases) {
        const QByteArray entry = mivohost::autostartEntry("m\\n", text, {"--store", text, "5"});
        EXPECT_EQ(entry, QByteArray("[Desktop Entry]\nType=Application\nVersion=1.0\nName=m\\\\n\n")
                             + "Exec=" + quoted + " \"--store\" " + quoted + " \"5\"\n");
    }
}

TEST(Autostart, FollowsTheStore)
{
    const LogCapture log;
    const QString path = Autostart::entryPath();
    const auto starts = [&path](const QByteArray& command) {
        return readFile(path).endsWith("\nExec=" + command + '\n');
    };
    mivohost::RuntimeThread runtime;
    TestStore store({{"autoStart", 1}, {"autoStartDelayTime", 30}});
    QStringList failures;
    {
        const Autostart autostart(runtime, store, "/opt/mivohost", {"--store", "x"},
                                  [&](const QString& why) { failures.append(why); });
        EXPECT_EQ(QFileInfo(path).completeBaseName(), QCoreApplication::applicationName());
        EXPECT_TRUE(starts(R"("/opt/mivohost" "--store" "x" "--start-delay" "30")"));
        runtime.call([&] { store.setAutoStartDelayTime(300); });
        EXPECT_TRUE(starts(R"("/opt/mivohost" "--store" "x" "--start-delay" "300")"));
        runtime.call([&] { store.setAutoStart(false); });
        EXPECT_FALSE(QFile::exists(path));
        runtime.call([&] { store.setAutoStartDelayTime(0); });
        EXPECT_FALSE(QFile::exists(path));
        EXPECT_TRUE(failures.isEmpty());

        ASSERT_TRUE(QDir().mkpath(path + "/in the way"));
        runtime.call([&] { store.setAutoStart(true); });
        runtime.call([&] { store.setAutoStart(false); });
        EXPECT_EQ(failures.size(), 2);
        EXPECT_TRUE(failures.value(0).startsWith(path)) << failures.value(0).toStdString();
        EXPECT_TRUE(QDir(path).removeRecursively());
    }
    runtime.call([&] { store.setAutoStart(true); });
    EXPECT_FALSE(QFile::exists(path)) << "nobody follows any more";

    // An entry of before goes when the store says off.
    store.setAutoStart(false);
    writeFile(path);
    const Autostart again(runtime, store, "/opt/mivohost", {}, [](const QString&) {});
    EXPECT_FALSE(QFile::exists(path));
}

TEST(Tray, TakesTheWindowOnlyWhereItCanBeGotBack)
{
    for (const int bits : {0, 1, 2, 3, 4, 5, 6, 7}) {
        EXPECT_EQ(mivohost::hidesOnClose((bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0),
                  bits == 3);
    }
}

} // namespace autostarttest
