#include "faults/home.h"

#include "support/program.h"
#include "support/soundserver.h"
#include "support/test.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QRandomGenerator>

#include <csignal>
#include <cstdio>

// A long run with faults in a random order. Started by scripts/soak, not with the other tests.

namespace {

/// Memory that the process holds, in megabytes.
int memoryOf(qint64 process)
{
    return fieldOf(QStringLiteral("/proc/%1/status").arg(process), "VmRSS:").toInt() / 1024;
}

/// Presses the keys; the undo steps that the program then says it has set, the last ones if a slow
/// machine takes a key for several. Nothing if it says none within `most` ms.
std::optional<int> undoStepAfter(Program& program, const QString& keys, int most)
{
    std::optional<int> set;
    program.press(keys);
    while (program.says("setting undoStep = ", set ? 100 : most)) {
        program.hasSaid("\n");
        set = program.output().split('\n').first().toInt();
    }
    return set;
}

} // namespace

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
    int rounds = 0;
    int edits = 0;
    int kills = 0;
    int damages = 0;
    int fullDisks = 0;
    int hangs = 0;
    int restarts = 0;
    int mostMemory = 0;
    int mostGrowth = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < minutes * 60000LL && !::testing::Test::HasFailure()) {
        Program program(home.path(), {"--settings"});
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("settings dialog open")) << program.output().constData();
        program.reachUndoSteps();
        // Each start copies what is set; a copy is used only where the settings are damaged.
        const int copied = known;
        constexpr int warm = 100; // edits after which all that is kept for later is there
        const int count = ++rounds % 10 == 0 ? 6 * warm : random.bounded(1, 30);
        int warmMemory = 0;
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
            if (random.bounded(30) == 0) {
                sound.stop();
                sound.start();
                ++restarts;
            }
            const auto set = undoStepAfter(program, known < 490 ? "Up Return" : "Down Return",
                                           full ? 1000 : 20000);
            if (set) {
                known = *set;
                ++edits;
            } else {
                ASSERT_TRUE(full && program.output().contains("message: "))
                    << "neither taken nor told:\n"
                    << program.output().constData();
            }
            if (full) {
                disk.makeRoom();
            }
            if (edit == warm) {
                warmMemory = memoryOf(program.id());
            }
        }
        const int memory = memoryOf(program.id());
        mostMemory = std::max(mostMemory, memory);
        mostGrowth = std::max(mostGrowth, warmMemory > 0 ? memory - warmMemory : 0);
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
            for (const QString& aside : recovered.aside) { // the disk is small
                QFile::remove(home.data(aside));
            }
        }
        ASSERT_EQ(home.undoStep(), known);
        if (rounds % 10 == 0) {
            std::printf("%lld s: %d rounds, %d MB\n", elapsed.elapsed() / 1000, rounds, memory);
            std::fflush(stdout);
        }
    }
    std::printf("%lld s: %d rounds, %d edits, %d kills, %d damaged files, %d full disks, %d hangs, "
                "%d restarts of the sound server; at most %d MB, and %d MB more after 600 edits "
                "than after 100; every acknowledged write was there or was told\n",
                elapsed.elapsed() / 1000, rounds, edits, kills, damages, fullDisks, hangs, restarts,
                mostMemory, mostGrowth);
}
