#pragma once

#include <memory>

class QByteArray;
class QProcess;

namespace mivohost {

/// Ends a process that lists devices, and waits a second for that. Null afterwards where it still
/// runs, as in a driver that hangs: QProcess would wait half a minute for it when destroyed, so it
/// is left behind. On the process's thread.
void endLister(std::unique_ptr<QProcess>& process);

/// In such a process: writes a line to the standard output at once. Returns the exit code.
int writeLine(const QByteArray& line);

} // namespace mivohost
