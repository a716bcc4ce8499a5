#include "faults/home.h"

#include "support/soundserver.h"

#include <csignal>
#include <cstdio>

// A long run with faults in a random order. Started by scripts/soak, not with the other tests.

TEST(Soak, DISABLED_EveryAcknowledgedWriteIsThereOrWasTold)
{
    const Disk disk;
    if (!disk.isMounted()) {
        std::puts("no right to mount a disk here: without full disks");
    }
    SoundServer sound;
    if (!sound.start()) {
        std::puts("no sound server here: without its restarts");
    }
    const Home home(disk.path());
    const int minutes = qEnvironmentVariableIntValue("MIVO_SOAK_MINUTES");
    const quint32 seed = QRandomGenerator::global()->generate();
    std::printf("seed %u\n", seed);
    QRandomGenerator random(seed);
    int known = 81; // the last acknowledged value, or the one that was told to be in force
    std::map<std::string, int> counts; // of what was done
    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < minutes * 60000LL && !::testing::Test::HasFailure()) {
        Program program(home.path(), {"--settings"});
        ASSERT_TRUE(isUp(program) && program.says("settings dialog open"));
        program.reachUndoSteps();
        // Each start copies what is set; a copy is used only where the settings are damaged.
        const int copied = known;
        const int count = ++counts["rounds"] % 10 == 0 ? 600 : random.bounded(1, 30);
        int warm = 0;
        for (int edit = 0; edit < count; ++edit) {
            const bool full = disk.isMounted() && random.bounded(10) == 0;
            if (full) {
                disk.fill();
                ++counts["full disks"];
            }
            if (random.bounded(20) == 0) {
                ::kill(static_cast<pid_t>(program.id()), SIGSTOP);
                QTest::qWait(random.bounded(500));
                ::kill(static_cast<pid_t>(program.id()), SIGCONT);
                ++counts["hangs"];
            }
            if (random.bounded(30) == 0) {
                sound.stop();
                sound.start();
                ++counts["restarts of the sound server"];
            }
            program.press(known < 490 ? "Up Return" : "Down Return");
            bool isTaken = false;
            // A slow machine may take a key for several.
            while (program.says("setting undoStep = ", isTaken ? 100 : full ? 1000 : 20000)) {
                program.hasSaid("\n");
                known = program.output().split('\n').first().toInt();
                isTaken = true;
            }
            ASSERT_TRUE(isTaken || (full && program.output().contains("message: ")))
                << "neither taken nor told:\n"
                << program.output().constData();
            ++counts[isTaken ? "edits" : "edits that could not be saved"];
            if (full) {
                disk.makeRoom();
            }
            const QString status = QStringLiteral("/proc/%1/status").arg(program.id());
            const int memory = fieldOf(status, "VmRSS:").toInt() / 1024;
            counts["MB at most"] = std::max(counts["MB at most"], memory);
            warm = edit <= 100 ? memory : warm; // all that is kept for later is there by then
            EXPECT_LE(memory, warm + 16) << "MB after " << edit << " edits";
        }
        const bool orderly = random.bounded(3) == 0;
        program.signal(orderly ? SIGTERM : SIGKILL);
        ++counts[orderly ? "orderly ends" : "kills"];
        if (random.bounded(4) == 0) {
            ++counts["damaged files"];
            writeFile(home.store(), random.bounded(2) == 0 ? QByteArray() : QByteArray(9000, 'x'));
            auto recovered = SqlitePersistence::recover(home.store());
            ASSERT_TRUE(recovered.persistence) << recovered.error;
            ASSERT_TRUE(recovered.copyTime.isValid());
            known = copied;
            for (const QString& aside : recovered.aside) { // the disk is small
                QFile::remove(home.data(aside));
            }
        }
        ASSERT_EQ(home.undoStep(), known);
        if (counts["rounds"] % 10 == 0) {
            std::printf("%lld s: %d rounds\n", elapsed.elapsed() / 1000, counts["rounds"]);
            std::fflush(stdout);
        }
    }
    for (const auto& [what, count] : counts) {
        std::printf("%d %s ", count, what.c_str());
    }
    std::printf("in %lld s; every acknowledged write was there or was told\n",
                elapsed.elapsed() / 1000);
}
