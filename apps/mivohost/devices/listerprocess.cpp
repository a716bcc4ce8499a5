#include "devices/listerprocess.h"

#include <QtCore/QByteArray>
#include <QtCore/QProcess>

#include <cstddef>
#include <cstdio>

namespace mivohost {

void endLister(std::unique_ptr<QProcess>& process)
{
    process->kill();
    if (process->state() != QProcess::NotRunning && !process->waitForFinished(1000)) {
        static_cast<void>(process.release()); // on purpose, see the header
    }
}

int writeLine(const QByteArray& line)
{
    const auto size = static_cast<std::size_t>(line.size());
    const bool isWritten =
        std::fwrite(line.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
    return isWritten ? 0 : 1;
}

} // namespace mivohost
