#include "faults/home.h"

#include <csignal>

#include <fcntl.h>

// Faults of the disk and of the program's own files, driven against the real program.

namespace {

enum Ends { starts, startsWhenAnswered, refuses };

constexpr const char* noDisk = "skipped: no right to mount a disk here";

} // namespace

TEST(Faults, OfAFileAreToldAndHarmNoOther)
{
    // Files of the program's folder, what is put into each, what the operator is told, and the undo
    // steps that are held afterwards; 0: they cannot be read.
    constexpr const char* folderInstead = nullptr;
    static constexpr char removed[] = "removed";
    const std::tuple<QString, const char*, Ends, const char*, int> faults[]{
        {"settings.sqlite", "", startsWhenAnswered, "message: The settings file could not be used",
         80},
        {"settings.sqlite", removed, startsWhenAnswered, "message: The settings file was missing.",
         80},
        {"settings.sqlite settings.sqlite.copy-1", "x", starts,
         "message: The settings file could not be read and was put aside as", 0},
        {"settings.sqlite", folderInstead, refuses, "it is a folder", 0},
        {"settings.sqlite.copy-1", "x", starts, "", 81},
        {"mivohost.lock", "1\nmivohost\nhere\n", starts, "", 81}, // of a process that is gone
        {"mivohost.log", folderInstead, starts, "message: The log is not kept", 81},
        {"../mivohost_Display/shortcut.json", "x", starts,
         "message: The file of the keys could not be read", 81},
        {"../mivohost_Display/show.mivo", "x", starts, "message: The project could not be opened",
         81},
    };
    for (const auto& [files, content, ends, said, undoStep] : faults) {
        SCOPED_TRACE(files.toStdString() + (content == folderInstead ? "/" : " "));
        const QTemporaryDir folder;
        const Home home(folder.path());
        const auto before = home.files();
        for (const QString& name : files.split(' ')) {
            QFile::remove(home.data(name));
            if (content == folderInstead) {
                QDir().mkpath(home.data(name));
            } else if (content != removed) {
                writeFile(home.data(name), content);
            }
        }
        const auto damaged = home.files();
        {
            Program program(home.path());
            ASSERT_TRUE(program.hasScreen());
            if (ends == startsWhenAnswered) {
                ASSERT_TRUE(program.says("the settings file cannot be used"));
                QTest::qWait(1000); // the question opens
                program.press("Return");
            }
            EXPECT_TRUE(program.hasSaid(said));
            if (ends == refuses) {
                program.press("Return");
                EXPECT_TRUE(program.ends());
            } else {
                EXPECT_TRUE(program.hasSaid("main window open"));
                program.signal(SIGTERM);
            }
            EXPECT_EQ(program.exitCode(), ends == refuses ? 3 : 0);
        }
        EXPECT_EQ(home.undoStep().toInt(), undoStep);
        // What was good is there, perhaps under another name.
        const auto after = home.files().values();
        for (const QString& name : before.keys()) {
            EXPECT_TRUE(after.contains(before[name]) || damaged[name] != before[name]
                        || name == home.store())
                << name;
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
    ASSERT_TRUE(isUp(program) && program.says("settings dialog open"));
    disk.fill();
    program.reachUndoSteps();
    program.press("Up Return");
    EXPECT_TRUE(program.says("message: "));
    disk.makeRoom();
    program.press("Up Return");
    EXPECT_TRUE(program.says("setting undoStep = "));
    QTest::qWait(500); // a slow machine may count the held key more than once
    program.kill();
    const int acknowledged = program.output().split('=').last().split('\n').first().toInt();
    EXPECT_GE(acknowledged, 82);
    disk.fill();
    Program again(home.path());
    EXPECT_TRUE(isUp(again));
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
        ASSERT_TRUE(isUp(program));
        const QByteArray project = readFile(home.project());
        const QByteArray shortcuts = readFile(home.shortcuts());
        readOnly ? disk.setReadOnly(true) : disk.fill();
        program.press("Down Return");
        ASSERT_TRUE(program.says("playing program One"));
        program.press("ctrl+s");
        EXPECT_TRUE(program.says("message: The project could not be saved"));
        program.press("ctrl+e");
        EXPECT_TRUE(program.says("editing shortcuts: Keys"));
        program.press("F5 Escape");
        EXPECT_TRUE(program.says("message: The keys could not be saved"));
        EXPECT_EQ(readFile(home.project()), project);
        EXPECT_EQ(readFile(home.shortcuts()), shortcuts);
        readOnly ? disk.setReadOnly(false) : disk.makeRoom();
        EXPECT_TRUE(program.says("message: The keys are saved again"));
        program.press("ctrl+s");
        EXPECT_TRUE(program.says("show.mivo saved"));
        program.kill();
        EXPECT_EQ(home.lastPlayed(), 1);
        EXPECT_TRUE(readFile(home.shortcuts()).contains("F5"));
    }
}

TEST(Faults, AProjectThatASignalOrALostScreenEndedIsOfferedAtTheNextStart)
{
    constexpr int screenLost = 0;
    for (const int signal : {SIGTERM, SIGHUP, screenLost}) {
        SCOPED_TRACE(signal);
        const QTemporaryDir folder;
        const Home home(folder.path());
        {
            Program program(home.path());
            ASSERT_TRUE(isUp(program));
            program.press("Down Return");
            ASSERT_TRUE(program.says("playing program One"));
            signal == screenLost ? program.loseScreen() : program.signal(signal);
            EXPECT_EQ(program.exitCode(), signal == screenLost) << program.output().constData();
        }
        EXPECT_EQ(home.lastPlayed(), -1) << "the file itself is the user's to save";
        Program again(home.path());
        ASSERT_TRUE(isUp(again));
        QTest::qWait(1000); // the question opens
        again.press("Return");
        EXPECT_TRUE(again.says("projectbackups/show-"));
        again.press("ctrl+s");
        EXPECT_TRUE(again.says("show.mivo saved"));
        EXPECT_EQ(home.lastPlayed(), 1);
    }
}

TEST(Faults, WhatTheProgramHasOpenIsNotHandedToThoseThatItStarts)
{
    const QTemporaryDir folder;
    const Home home(folder.path());
    Program program(home.path());
    ASSERT_TRUE(isUp(program));
    int seen = 0;
    const auto handedOn = [&seen](const QString& process) {
        const QDir open("/proc/" + process + "/fd");
        const QStringList numbers = open.entryList(QDir::Files | QDir::System);
        seen = numbers.size();
        QStringList files;
        for (const QString& number : numbers) {
            const auto flags = fieldOf(open.filePath("../fdinfo/" + number), "flags:");
            if (number.toInt() > 2 && (flags.toInt(nullptr, 8) & O_CLOEXEC) == 0) {
                files.append(QFile::symLinkTarget(open.filePath(number)).section('/', -1));
            }
        }
        return files;
    };
    const QStringList ours = handedOn("self"); // to the program, too
    QStringList leaked;
    // Sanitizers open a pipe for a moment now and then.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        leaked = handedOn(QString::number(program.id()));
        for (const QString& file : ours) {
            leaked.removeAll(file);
        }
        return leaked.isEmpty() && seen > 8;
    })) << leaked.join(' ');
}
