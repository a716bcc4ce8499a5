#include "faults/home.h"

#include "support/program.h"
#include "support/test.h"

#include <QtCore/QRegularExpression>

#include <csignal>
#include <thread>

#include <fcntl.h>

// Faults of the disk and of the program's own files, driven against the real program.

namespace {

void replaceByFolder(const QString& path)
{
    QFile::remove(path);
    QDir().mkpath(path);
}

enum Ends { starts, startsWhenAnswered, refuses };

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
     [](const Home& home) { writeFile(home.data("mivohost.lock"), "1\nmivohost\nhere\n"); }, starts,
     "", 81},
    {"the shortcuts are garbage", [](const Home& home) { writeFile(home.shortcuts(), "x"); },
     starts, "message: The file of the keys could not be read", 81},
    {"a folder in place of the log",
     [](const Home& home) { replaceByFolder(home.data("mivohost.log")); }, starts, "no log file",
     81},
    {"the project is garbage", [](const Home& home) { writeFile(home.project(), "x"); }, starts,
     "message: The project could not be opened", 81},
    {"a folder in place of the project", [](const Home& home) { replaceByFolder(home.project()); },
     starts, "message: The project could not be opened", 81},
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
        const auto damaged = home.files();
        {
            Program program(home.path());
            ASSERT_TRUE(program.hasScreen());
            if (fault.ends == startsWhenAnswered) {
                ASSERT_TRUE(program.says("the settings file cannot be used"));
                QTest::qWait(1000); // the question opens
                program.press("Return");
            }
            EXPECT_TRUE(program.hasSaid(fault.says)) << program.output().constData();
            if (fault.ends == refuses) {
                program.press("Return");
                EXPECT_TRUE(program.ends());
            } else {
                EXPECT_TRUE(program.hasSaid("main window open")) << program.output().constData();
                program.signal(SIGTERM);
            }
            EXPECT_EQ(program.exitCode(), fault.ends == refuses ? 3 : 0);
        }
        EXPECT_EQ(home.undoStep().toInt(), fault.undoStep);
        // What was good is there, perhaps under another name.
        const auto after = home.files().values();
        for (auto file = before.begin(); file != before.end(); ++file) {
            EXPECT_TRUE(after.contains(file.value()) || damaged.value(file.key()) != file.value()
                        || file.key() == home.store())
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
    program.press("Up Return");
    EXPECT_TRUE(program.says("message: ")) << program.output().constData();
    disk.makeRoom();
    program.press("Up Return");
    EXPECT_TRUE(program.says("setting undoStep = ")) << program.output().constData();
    QTest::qWait(500); // a slow machine may count the held key more than once
    program.kill();
    const int acknowledged = program.output().split('=').last().split('\n').first().toInt();
    EXPECT_GE(acknowledged, 82);
    disk.fill();
    Program again(home.path());
    EXPECT_TRUE(again.says("main window open")) << again.output().constData();
    again.kill();
    disk.makeRoom();
    EXPECT_EQ(home.undoStep(), acknowledged);
}

TEST(Faults, AProjectAndKeysThatCannotBeSavedAreToldAndSavedLater)
{
    for (const bool readOnly : {false, true}) {
        SCOPED_TRACE(readOnly ? "read-only" : "full");
        const Disk disk;
        if (!disk.isMounted()) {
            GTEST_SKIP() << noDisk;
        }
        const QTemporaryDir folder;
        const Home home(folder.path(), disk.path());
        Program program(home.path());
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("main window open"));
        const QByteArray project = readFile(home.project());
        const QByteArray shortcuts = readFile(home.shortcuts());
        readOnly ? disk.setReadOnly(true) : disk.fill();
        program.press("Down Return");
        ASSERT_TRUE(program.says("playing program One")) << program.output().constData();
        program.press("ctrl+s");
        EXPECT_TRUE(program.says("message: The project could not be saved"));
        program.press("ctrl+e");
        EXPECT_TRUE(program.says("editing shortcuts: Keys"));
        program.press("F5 Escape");
        EXPECT_TRUE(program.says("message: The keys could not be saved"))
            << program.output().constData();
        EXPECT_EQ(readFile(home.project()), project);
        EXPECT_EQ(readFile(home.shortcuts()), shortcuts);
        readOnly ? disk.setReadOnly(false) : disk.makeRoom();
        EXPECT_TRUE(program.says("message: The keys are saved again"))
            << program.output().constData();
        program.press("ctrl+s");
        EXPECT_TRUE(program.says("show.mivo saved")) << program.output().constData();
        program.kill();
        EXPECT_EQ(home.lastPlayed(), 1);
        EXPECT_TRUE(readFile(home.shortcuts()).contains("F5"));
    }
}

TEST(Faults, AProjectThatASignalEndedIsOfferedAtTheNextStart)
{
    for (const int signal : {SIGTERM, SIGHUP}) {
        SCOPED_TRACE(signal);
        const QTemporaryDir folder;
        const Home home(folder.path());
        {
            Program program(home.path());
            ASSERT_TRUE(program.hasScreen());
            ASSERT_TRUE(program.says("main window open"));
            program.press("Down Return");
            ASSERT_TRUE(program.says("playing program One")) << program.output().constData();
            program.signal(signal);
            EXPECT_EQ(program.exitCode(), 0) << program.output().constData();
        }
        EXPECT_EQ(home.lastPlayed(), -1) << "the file itself is the user's to save";
        Program again(home.path());
        ASSERT_TRUE(again.hasScreen());
        ASSERT_TRUE(again.says("main window open"));
        QTest::qWait(1000); // the question opens
        again.press("Return");
        EXPECT_TRUE(again.says("projectbackups/show-")) << again.output().constData();
        again.press("ctrl+s");
        EXPECT_TRUE(again.says("show.mivo saved")) << again.output().constData();
        EXPECT_EQ(home.lastPlayed(), 1);
    }
}

TEST(Faults, AKillInTheMiddleOfAWriteLeavesWhatWasOrWhatIsNew)
{
    const std::pair<const char*, const char*> writes[]{
        {"Down Return", "ctrl+s"}, {"ctrl+e F5", "Escape"}, {"Up", "Return"}};
    for (const auto& [before, last] : writes) {
        SCOPED_TRACE(last);
        const bool isSetting = last == QLatin1String("Return");
        const QTemporaryDir folder;
        const Home home(folder.path());
        for (const int delay : {5, 25, 45}) {
            const int step = home.undoStep().toInt();
            const QByteArray keys = readFile(home.shortcuts());
            Program program(home.path(), isSetting ? QStringList("--settings") : QStringList());
            ASSERT_TRUE(program.hasScreen());
            ASSERT_TRUE(program.says("window open"));
            if (isSetting) {
                ASSERT_TRUE(program.says("dialog open"));
                program.reachUndoSteps();
            }
            program.press(before);
            std::thread person([&program, last = last] { program.press(last); });
            QTest::qWait(delay);
            program.kill();
            person.join();
            EXPECT_GE(home.undoStep().toInt(), step);
            EXPECT_GE(home.lastPlayed(), -1) << "unreadable";
            const QByteArray keysNow = readFile(home.shortcuts());
            EXPECT_TRUE(keysNow == keys || keysNow.contains("F5\"}]}")) << keysNow.data();
        }
    }
}

TEST(Faults, WhatTheProgramHasOpenIsNotHandedToThoseThatItStarts)
{
    const QTemporaryDir folder;
    const Home home(folder.path());
    Program program(home.path());
    ASSERT_TRUE(program.hasScreen());
    ASSERT_TRUE(program.says("main window open")) << program.output().constData();
    const auto targets = [](const QDir& open) {
        QMap<QString, QString> found; // by the file that says how it was opened
        for (const QString& number : open.entryList(QDir::Files | QDir::System)) {
            found[open.filePath("../fdinfo/" + number)] =
                QFile::symLinkTarget(open.filePath(number)).section('/', -1);
        }
        return found;
    };
    const auto ours = targets(QDir("/proc/self/fd")).values(); // handed to the program, too
    QStringList handedOn;
    // Sanitizers open a pipe for a moment now and then.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        const auto open = targets(QDir(QStringLiteral("/proc/%1/fd").arg(program.id())));
        handedOn.clear();
        for (auto file = open.begin(); file != open.end(); ++file) {
            if (!file.key().contains(QRegularExpression("/[012]$")) && !ours.contains(*file)
                && (fieldOf(file.key(), "flags:").toInt(nullptr, 8) & O_CLOEXEC) == 0) {
                handedOn.append(*file);
            }
        }
        return handedOn.isEmpty() && open.size() > 8;
    })) << handedOn.join(' ').toStdString();
}
