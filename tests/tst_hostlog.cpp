#include "base/hostlog.h"
#include "system/console.h"

#include "support/otherprocess.h"
#include "support/test.h"

namespace {

constexpr int lines = 5000; // more than a pipe and the queue of the console take

int logLines(const QStringList& arguments)
{
    mivohost::takeQtMessages();
    mivohost::startLog(arguments.at(1));
    for (int line = 1; line < lines; ++line) {
        mivohost::hostLog()->info("line {} of what fills a console that nobody reads", line);
    }
    qWarning("Qt's own line");
    mivohost::hostLog()->info("line {}", lines);
    return 0;
}

const bool isRegistered = otherProcesses().emplace("--as-logger", logLines).second;

} // namespace

TEST(HostLog, IsNotHeldUpByAConsoleThatIsStopped)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("log");
    const QByteArray last = "line " + QByteArray::number(lines);
    const auto isLogged = [&] {
        QFile log(file);
        return log.open(QIODevice::ReadOnly) && log.seek(qMax(qint64(0), log.size() - 200))
               && log.readAll().contains(last);
    };
    QProcess process; // reads only while it is waited for
    process.start(QCoreApplication::applicationFilePath(), {"--as-logger", file});
    ASSERT_TRUE(process.waitForStarted());
    for (int waited = 0; waited < 20000 && !isLogged(); waited += 10) {
        QThread::msleep(10);
    }
    EXPECT_TRUE(isLogged());
    EXPECT_TRUE(process.waitForFinished());
    const QByteArray shown = process.readAllStandardError();
    EXPECT_TRUE(shown.contains(last)) << "what was logged at the end";
    EXPECT_TRUE(shown.contains("Qt's own line"));
}
