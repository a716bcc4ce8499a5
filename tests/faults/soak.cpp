#include "faults/home.h"

#include "support/program.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QRandomGenerator>
#include <QtTest/QTest>

#include <csignal>
#include <cstdio>

// A long run with faults in a random order. Started by scripts/soak, not with the other tests.

namespace {

/// Memory that the process holds, in megabytes.
int memoryOf(qint64 process)
{
    const QByteArray status = readFile(QStringLiteral("/proc/%1/status").arg(process));
    return status.mid(status.indexOf("VmRSS:") + 6, 20).simplified().split(' ').first().toInt()
           / 1024;
}

} // namespace

TEST(Soak, DISABLED_EveryAcknowledgedWriteIsThereOrWasTold)
{
    const Disk disk;
    if (!disk.isMounted()) {
        std::puts("no right to mount a disk here: without full disks");
    }
    const Home home(disk.path());
    const int minutes = qEnvironmentVariableIntValue("MIVO_SOAK_MINUTES");
    const quint32 seed = QRandomGenerator::global()->generate();
    std::printf("seed %u\n", seed);
    QRandomGenerator random(seed);
    int known = 81; // the last acknowledged value, or the one that was told to be in force
    int edits = 0;
    int kills = 0;
    int damages = 0;
    int fullDisks = 0;
    int hangs = 0;
    int mostMemory = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < minutes * 60000LL && !::testing::Test::HasFailure()) {
        Program program(home.path(), {"--settings"});
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("settings dialog open")) << program.output().constData();
        program.reachUndoSteps();
        // Each start copies what is set; a copy is used only where the settings are damaged.
        const int copied = known;
        const int count = random.bounded(1, 30);
        for (int edit = 0; edit < count; ++edit) {
            const bool full = disk.isMounted() && random.bounded(10) == 0;
            if (full) {
                disk.fill();
                ++fullDisks;
            }
            if (random.bounded(20) == 0) {
                ::kill(static_cast<pid_t>(program.id()), SIGSTOP);
                QTest::qWait(random.bounded(500));
                ::kill(static_cast<pid_t>(program.id()), SIGCONT);
                ++hangs;
            }
            const int wanted = known < 499 ? known + 1 : known - 1;
            program.person().key(wanted > known ? RfbClient::up : RfbClient::down);
            program.person().key(RfbClient::enter);
            const QByteArray taken = "setting undoStep = " + QByteArray::number(wanted);
            if (program.says(taken, full ? 1000 : 20000)) {
                known = wanted;
                ++edits;
            } else {
                ASSERT_TRUE(full && program.output().contains("message: "))
                    << "neither taken nor told:\n"
                    << program.output().constData();
            }
            if (full) {
                disk.makeRoom();
            }
        }
        mostMemory = std::max(mostMemory, memoryOf(program.id()));
        const bool orderly = random.bounded(3) == 0;
        program.signal(orderly ? SIGTERM : SIGKILL);
        kills += orderly ? 0 : 1;
        if (random.bounded(4) == 0) {
            ++damages;
            writeFile(home.store(), random.bounded(2) == 0 ? QByteArray() : QByteArray(9000, 'x'));
            auto recovered = SqlitePersistence::recover(home.store());
            ASSERT_TRUE(recovered.persistence) << recovered.error.toStdString();
            ASSERT_TRUE(recovered.copyTime.isValid());
            known = copied;
        }
        ASSERT_EQ(home.undoStep(), known);
    }
    std::printf("%lld s: %d edits, %d kills, %d damaged files, %d full disks, %d hangs, "
                "at most %d MB; every acknowledged write was there or was told\n",
                elapsed.elapsed() / 1000, edits, kills, damages, fullDisks, hangs, mostMemory);
}
