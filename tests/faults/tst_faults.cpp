#include "faults/home.h"

#include "support/files.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <csignal>
#include <functional>

// Faults of the disk and of the program's own files, driven against the real program.

namespace {

void replaceByFolder(const QString& path)
{
    QFile::remove(path);
    QDir().mkpath(path);
}

enum Ends { starts, startsBeforeItSays, startsWhenAnswered, refuses };

struct Fault
{
    const char* label;
    std::function<void(const Home&)> damage;
    Ends ends;
    const char* says; ///< the operator is told of it in these words
    int undoStep;     ///< held afterwards; 0: they cannot be read
};

const Fault faults[]{
    {"the settings are emptied", [](const Home& home) { writeFile(home.store()); },
     startsWhenAnswered, "message: The settings file could not be used", 80},
    {"the settings are missing", [](const Home& home) { QFile::remove(home.store()); },
     startsWhenAnswered, "message: The settings file could not be used", 80},
    {"the settings are garbage",
     [](const Home& home) { writeFile(home.store(), QByteArray(9000, 'x')); }, startsWhenAnswered,
     "message: The settings file could not be used", 80},
    {"the settings and their copy are garbage",
     [](const Home& home) {
         writeFile(home.store(), "x");
         writeFile(home.copy(), "x");
     },
     starts, "message: The settings file could not be read and was put aside as", 0},
    {"a folder in place of the settings", [](const Home& home) { replaceByFolder(home.store()); },
     refuses, "Is a directory", 0},
    {"a bad copy", [](const Home& home) { writeFile(home.copy(), "x"); }, starts, "", 81},
    {"a lock of a process that is gone",
     [](const Home& home) {
         writeFile(home.store() + ".lock", "1\nmivohost\nhere\n");
         writeFile(home.data("mivohost.lock"), "1\nmivohost\nhere\n");
     },
     starts, "", 81},
    {"a folder in place of the lock",
     [](const Home& home) { replaceByFolder(home.data("mivohost.lock")); }, starts, "", 81},
    {"the shortcuts are garbage", [](const Home& home) { writeFile(home.shortcuts(), "x"); },
     startsBeforeItSays, "message: The file of the keys could not be read", 81},
    {"a folder in place of the log",
     [](const Home& home) { replaceByFolder(home.data("mivohost.log")); }, starts, "no log file",
     81},
};

constexpr const char* noDisk = "skipped: no right to mount a disk here";

} // namespace

TEST(Faults, OfAFileAreToldAndHarmNoOther)
{
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.label);
        const QTemporaryDir folder;
        const Home home(folder.path());
        const auto before = home.files();
        fault.damage(home);
        {
            Program program(home.path());
            ASSERT_TRUE(program.hasScreen());
            if (fault.ends == startsWhenAnswered) {
                ASSERT_TRUE(program.says("the settings file cannot be used"));
                QTest::qWait(1000); // the question opens
                program.person().key(RfbClient::enter);
            }
            const bool opens = fault.ends == startsBeforeItSays && program.says("main window open");
            EXPECT_TRUE(program.says(fault.says)) << program.output().constData();
            if (fault.ends == refuses) {
                program.person().key(RfbClient::enter);
                EXPECT_TRUE(program.ends());
                EXPECT_EQ(program.exitCode(), 3);
            } else {
                EXPECT_TRUE(opens || program.says("main window open"))
                    << program.output().constData();
                program.signal(SIGTERM);
                EXPECT_EQ(program.exitCode(), 0) << program.output().constData();
            }
        }
        EXPECT_EQ(home.undoStep().toInt(), fault.undoStep);
        // What was good is there, perhaps under another name.
        const auto after = home.files().values();
        for (auto file = before.begin(); file != before.end(); ++file) {
            const bool damaged = readFile(file.key()) != file.value();
            EXPECT_TRUE(!damaged || after.contains(file.value()) || file.key() == home.store()
                        || file.key() == home.shortcuts() || file.key() == home.copy())
                << file.key().toStdString();
        }
    }
}

TEST(Faults, AFullDiskIsToldAndLosesNothing)
{
    const Disk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << noDisk;
    }
    const Home home(disk.path());
    Program program(home.path(), {"--settings"});
    ASSERT_TRUE(program.hasScreen());
    ASSERT_TRUE(program.says("settings dialog open"));
    disk.fill();
    program.reachUndoSteps();
    program.person().key(RfbClient::up);
    program.person().key(RfbClient::enter);
    EXPECT_TRUE(program.says("message: ")) << program.output().constData();
    disk.makeRoom();
    program.person().key(RfbClient::up);
    program.person().key(RfbClient::enter);
    // On a slow machine the held key counts more than once: what was said last is what holds.
    EXPECT_TRUE(program.says("setting undoStep = ")) << program.output().constData();
    QTest::qWait(500);
    const QByteArray said = "setting undoStep = " + program.output();
    const int acknowledged =
        said.mid(said.lastIndexOf("setting undoStep = ") + 19).split('\n').first().toInt();
    EXPECT_GE(acknowledged, 82);
    program.kill();
    disk.fill();
    Program again(home.path());
    ASSERT_TRUE(again.hasScreen());
    EXPECT_TRUE(again.says("main window open")) << again.output().constData();
    again.kill();
    disk.makeRoom();
    EXPECT_EQ(home.undoStep(), acknowledged);
}

TEST(Faults, AReadOnlyDiskIsTheReasonThatIsTold)
{
    const Disk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << noDisk;
    }
    const Home home(disk.path());
    const auto before = home.files();
    disk.makeReadOnly();
    Program program(home.path());
    ASSERT_TRUE(program.hasScreen());
    EXPECT_TRUE(program.says("cannot be")) << program.output().constData();
    program.person().key(RfbClient::enter);
    EXPECT_TRUE(program.ends());
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_EQ(home.files(), before);
}

TEST(Faults, AKillInTheMiddleOfAnEditLosesNothingThatWasAcknowledged)
{
    const QTemporaryDir folder;
    const Home home(folder.path());
    int known = 81;
    for (int round = 0; round < 4; ++round) {
        Program program(home.path(), {"--settings"});
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("settings dialog open"));
        program.reachUndoSteps();
        for (int edit = 0; edit <= round; ++edit) {
            program.person().key(RfbClient::up);
            program.person().key(RfbClient::enter);
            EXPECT_TRUE(program.says("setting undoStep = " + QByteArray::number(known + 1)));
            ++known;
        }
        program.person().key(RfbClient::up);
        program.person().key(RfbClient::enter); // perhaps acknowledged, perhaps not
        program.kill();
        const int held = home.undoStep().toInt();
        EXPECT_TRUE(held == known || held == known + 1) << held << " after " << known;
        known = held;
    }
}
