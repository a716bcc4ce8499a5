#include "surface/bindingstransfer.h"

#include "peripherals/bindingsfile.h"

namespace mivohost {

namespace {

constexpr std::size_t mostBytes = 8 * 1024 * 1024; // of a file to be imported

} // namespace

BindingsTransfer::BindingsTransfer(mivo::settings::ShortCutMgr& manager, Peripherals& peripherals)
    : m_manager(manager), m_peripherals(peripherals)
{}

void BindingsTransfer::exportTo(const QString& path)
{
    const auto fail = [this, path](const QString& reason) {
        emit failed(QStringLiteral("ShortcutsNotExported"), fileProblem(path, reason));
    };
    m_requests.start(
        {path, true, fail},
        [path, content = exportedBindings(m_manager, m_peripherals)] {
            return saveFile(path, content);
        },
        [this, fail](const QString& error, bool isWaitedFor) {
            if (isWaitedFor && !error.isEmpty()) {
                fail(error);
            } else if (!isWaitedFor && error.isEmpty()) {
                emit told(QStringLiteral("ShortcutsExportedLate"));
            }
        });
}

void BindingsTransfer::importFrom(const QString& path)
{
    const auto fail = [this](const QString& reason) {
        emit failed(QStringLiteral("ShortcutsNotImported"), reason);
    };
    m_requests.start(
        {path, false, fail}, [path] { return readFile(path, mostBytes); },
        [this, fail](const FileContent& file, bool isWaitedFor) {
            if (!isWaitedFor) {
                return;
            }
            const QString problem = file.error.isEmpty()
                                        ? importBindings(file.bytes, m_manager, m_peripherals)
                                        : file.error;
            if (!problem.isEmpty()) {
                fail(problem);
            }
        });
}

} // namespace mivohost
