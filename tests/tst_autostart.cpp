#include "system/autostart.h"

#include "support/fulldisk.h"
#include "support/test.h"

#ifdef Q_OS_WIN
#include <QtCore/qt_windows.h>

#include <shellapi.h>
#endif

namespace autostarttest {

using mivohost::Autostart;

#ifdef Q_OS_WIN

TEST(AutostartEntry, StartsExactlyThisProgramWithTheseArguments)
{
    for (const char* text :
         {"C:\\a folder\\", "a\"b", "a\\\"b\\\\", "", "%PATH% & |", "\u5a92\u4f53"}) {
        const QString command = QString::fromUtf8(
            mivohost::autostartEntry({}, R"(C:\媒体\mivo host.exe)", {"--store", text, "5"}));
        int count = 0;
        wchar_t** parts =
            CommandLineToArgvW(reinterpret_cast<const wchar_t*>(command.utf16()), &count);
        QStringList taken;
        for (int i = 0; i < count; ++i) {
            taken.append(QString::fromWCharArray(parts[i]));
        }
        LocalFree(parts);
        EXPECT_EQ(taken, (QStringList{R"(C:\媒体\mivo host.exe)", "--store", text, "5"}));
    }
}

#else

// By the rules of desktop entries: quotes around each argument, in it a backslash before ", `, $
// and \, and %% for %; on all of that the escapes of a value: \\, \n, \t and \r.
TEST(AutostartEntry, StartsExactlyThisProgramWithTheseArguments)
{
    const std::pair<const char*, const char*> cases[]{
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

#endif

TEST(Autostart, FollowsWhatTheStoreKeeps)
{
    const LogCapture log;
    const QString path = Autostart::entryPath();
    mivohost::RuntimeThread runtime;
    QStringList failures;
    std::optional<TestStore> store;
    std::optional<Autostart> autostart;
    const auto start = [&](QVariantHash rows, bool allowed = false,
                           Autostart::Settings settings = Autostart::Settings::own) {
        autostart.reset();
        store.emplace(rows); // these may be the rows of the store before
        autostart.emplace(runtime, *store, "/opt/mivohost", allowed, settings,
                          [&](const QString& why) { failures.append(why); });
    };
    const auto command = [] {
        const QString entry = Autostart::entry();
        const int value = entry.indexOf("Exec=");
        return entry.mid(value < 0 ? 0 : value + 5).trimmed().toStdString();
    };
    const std::string program =
        '"' + QDir::toNativeSeparators("/opt/mivohost").toStdString() + "\" ";
    const std::string withRight = program + R"("--allow-power-actions" "--start-delay" )";

    start({{"autoStart", 1}, {"autoStartDelayTime", 30}});
    EXPECT_EQ(QFileInfo(path).completeBaseName(), QCoreApplication::applicationName());
    EXPECT_EQ(command(), program + R"("--start-delay" "30")");
    runtime.call([&] { store->setAutoStartDelayTime(300); });
    start(store->kept.rows, true);
    EXPECT_EQ(command(), withRight + R"("300")");
    start(store->kept.rows); // by hand, without the option
    EXPECT_EQ(command(), withRight + R"("300")") << "the entry has it already";

    start({}); // a store that was lost
    runtime.call([&] { store->setAutoStartDelayTime(10); });
    EXPECT_EQ(command(), withRight + R"("300")");
    start({{"autoStart", 0}}, false, Autostart::Settings::copy);
    EXPECT_EQ(command(), withRight + R"("300")") << "an older copy of the settings";
    start({{"autoStart", 7}});
    EXPECT_EQ(command(), withRight + R"("300")") << "a value that it cannot be";

    EXPECT_EQ(failures, QStringList());
    start({{"autoStart", 0}}, false, Autostart::Settings::others);
    EXPECT_EQ(failures, QStringList());
    runtime.call([&] { store->setAutoStart(true); });
    EXPECT_EQ(failures, QStringList("it goes by the settings without --store"));
    EXPECT_EQ(command(), withRight + R"("300")");
    failures.clear();

    start({});
    runtime.call([&] { store->setAutoStart(true); });
    runtime.call([&] { store->setAutoStart(false); });
    runtime.call([&] { store->setAutoStartDelayTime(0); });
    EXPECT_EQ(Autostart::entry(), "");
    runtime.call([&] { store->setAutoStart(true); });
    EXPECT_EQ(command(), program + R"("--start-delay" "0")") << "off and on takes the right away";

    // Switched off as each system does it.
#ifdef Q_OS_WIN
    const BYTE off[12] = {3}; // as the system's list of such programs puts it
    RegSetKeyValueW(HKEY_CURRENT_USER,
                    LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\StartupApproved\Run)",
                    QCoreApplication::applicationName().toStdWString().c_str(), REG_BINARY, off,
                    sizeof off);
#else
    const QByteArray off = Autostart::entry().toUtf8() + "X-GNOME-Autostart-enabled = false\n";
    writeFile(path, off);
    start(store->kept.rows);
    EXPECT_EQ(readFile(path), off);
    failures.clear();
    writeFile(path, "[Desktop Entry]\nHidden=true\n");
#endif
    runtime.call([&] { store->setAutoStartDelayTime(1); });
    runtime.call([&] { store->setAutoStart(false); });
    runtime.call([&] { store->setAutoStart(true); });
    EXPECT_EQ(failures, QStringList("switched off in the system's list of startup apps"))
        << "until somebody switches it off and on here";
    EXPECT_EQ(command(), program + R"("--start-delay" "1")");
    failures.clear();

    autostart.reset();
    store->setAutoStart(false);
    EXPECT_NE(Autostart::entry(), "") << "nobody follows any more";
    start(store->kept.rows);
    EXPECT_EQ(Autostart::entry(), "") << "an entry of before goes when the store says off";

    SKIP_WITHOUT_FULL_DISK();
    runtime.call([&] { store->setAutoStart(true); });
    {
        const FullDisk full;
        runtime.call([&] { store->setAutoStartDelayTime(20); });
    }
    EXPECT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures.value(0).startsWith(path + ": ")) << failures.value(0);
    EXPECT_EQ(command(), program + R"("--start-delay" "1")") << "the old one stays";
}

} // namespace autostarttest
