#include "system/autostart.h"

#include "runtime/runtimethread.h"
#include "system/tray.h"

#include "support/logcapture.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace autostarttest {

using mivohost::Autostart;

namespace {

QString valueOf(const QByteArray& entry, const QString& key)
{
    for (const QString& line : QString::fromUtf8(entry).split('\n')) {
        if (line.startsWith(key + '=')) {
            return line.mid(key.size() + 1);
        }
    }
    return {};
}

/// What a desktop makes of an Exec value: the key file's escapes, then the quotes, then the field
/// codes. An error gives "!".
QStringList startedBy(const QString& value)
{
    QString line;
    for (int i = 0; i < value.size(); ++i) {
        if (value[i] != '\\') {
            line += value[i];
        } else {
            const int at = QStringLiteral("sntr\\").indexOf(value.mid(++i, 1));
            if (at < 0 || i >= value.size()) {
                return {"!"};
            }
            line += QStringLiteral(" \n\t\r\\")[at];
        }
    }
    QStringList arguments;
    bool inQuotes = false;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (c == '"') {
            inQuotes = !inQuotes;
            if (inQuotes) {
                arguments.append(QString());
            }
        } else if (!inQuotes) {
            if (c != ' ') {
                return {"!"}; // every argument is expected in quotes
            }
        } else if (c == '\\') {
            arguments.last() += line[++i];
        } else if (c == '`' || c == '$') {
            return {"!"};
        } else if (c == '%') {
            if (++i >= line.size() || line[i] != '%') {
                return {"!"};
            }
            arguments.last() += '%';
        } else {
            arguments.last() += c;
        }
    }
    return inQuotes ? QStringList{"!"} : arguments;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(AutostartEntry, StartsExactlyThisProgramWithTheseArguments)
{
    for (const char* program :
         {"/usr/bin/mivohost", "/opt/show control/mivohost", "/opt/100%/mivo", "/opt/%u/mivo",
          "/opt/\"quoted\"/it's", "/opt/back\\slash\\\\two", "/opt/$HOME/`id`", "/opt/a\tb\nc",
          "/opt/播放/mivo", "/opt/;&|<>*?#()~/mivo"}) {
        const QStringList arguments{"--store", QString::fromUtf8(program), "", "--start-delay",
                                    "30"};
        const QByteArray entry =
            mivohost::autostartEntry("mivohost", QString::fromUtf8(program), arguments);
        EXPECT_TRUE(entry.startsWith("[Desktop Entry]\n"));
        EXPECT_EQ(valueOf(entry, "Type"), "Application");
        EXPECT_EQ(startedBy(valueOf(entry, "Exec")),
                  QStringList{QString::fromUtf8(program)} + arguments)
            << entry.constData();
    }
    // By hand, so that entry and reader cannot be wrong in the same way.
    EXPECT_EQ(
        valueOf(mivohost::autostartEntry("m", "/a b/100%\\\"$", {"--start-delay", "5"}), "Exec"),
        R"("/a b/100%%\\\\\\"\\$" "--start-delay" "5")");
}

TEST(Autostart, FollowsTheStore)
{
    const LogCapture log;
    const QString path = Autostart::entryPath();
    const auto arguments = [&path] { return startedBy(valueOf(contentOf(path), "Exec")); };
    mivohost::RuntimeThread runtime;
    TestStore store({{"autoStart", 1}, {"autoStartDelayTime", 30}});
    QStringList failures;
    {
        const Autostart autostart(runtime, store, "/opt/mivohost", {"--store", "x"},
                                  [&](const QString& why) { failures.append(why); });
        EXPECT_EQ(QFileInfo(path).completeBaseName(), QCoreApplication::applicationName());
        EXPECT_EQ(arguments(),
                  (QStringList{"/opt/mivohost", "--store", "x", "--start-delay", "30"}));
        runtime.call([&] { store.setAutoStartDelayTime(300); });
        EXPECT_EQ(arguments().last(), "300");
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
    QFile left(path);
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
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
