#include "project/autosave.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QSaveFile>

#include <utility>

namespace mivohost {

namespace {

constexpr int millisecondsPerMinute = 60 * 1000;

/// The project's own automatic saves in `folder`, the oldest first.
QStringList ownSaves(const QDir& folder, const QString& name, const QString& mark)
{
    static const QRegularExpression timeOnly(QStringLiteral("^-\\d{8}-\\d{6}\\.mivo$"));
    QStringList saves;
    for (const QString& file : folder.entryList(QDir::Files, QDir::Name)) {
        if (!file.startsWith(name) || !timeOnly.match(file.mid(name.size())).hasMatch()) {
            continue;
        }
        QFile content(folder.filePath(file));
        if (content.open(QIODevice::ReadOnly)) {
            const QString found = automaticSaveMark(content.readAll());
            if (!found.isNull() && found == mark) {
                saves.append(file);
            }
        }
    }
    return saves;
}

/// Empty, or why it did not work.
QString saveInto(const QString& path, const ProgramDispatch::State& state, int kept, QDateTime now)
{
    if (path.isEmpty() || !QDir().mkpath(path)) {
        return QStringLiteral("no such folder");
    }
    const QDir folder(path);
    const QString name =
        state.file.isEmpty() ? QStringLiteral("unnamed") : QFileInfo(state.file).completeBaseName();
    const QString mark = state.file.isEmpty() ? QLatin1String("") : state.file;
    const auto nameAt = [&name](const QDateTime& time) {
        return name + time.toString(QStringLiteral("-yyyyMMdd-hhmmss")) + ".mivo";
    };
    while (folder.exists(nameAt(now))) {
        now = now.addSecs(1);
    }
    QSaveFile output(folder.filePath(nameAt(now)));
    const QByteArray content = projectToJson(state.project, mark);
    if (!output.open(QIODevice::WriteOnly) || output.write(content) != content.size()
        || !output.commit()) {
        return output.errorString();
    }
    QStringList saves = ownSaves(folder, name, mark);
    saves.removeOne(nameAt(now)); // stays, also where a clock was set back
    while (saves.size() >= kept) {
        QFile::remove(folder.filePath(saves.takeFirst()));
    }
    return {};
}

} // namespace

AutoSave::AutoSave(RuntimeThread& runtime, SettingsStore& store,
                   std::shared_ptr<ProgramDispatch> dispatch, FailureHandler failed)
    : m_runtime(runtime), m_store(store), m_dispatch(std::move(dispatch)),
      m_failed(std::move(failed))
{
    const auto follow = [this](auto) {
        QMetaObject::invokeMethod(this, &AutoSave::followSettings, Qt::QueuedConnection);
    };
    m_runtime.call([&] {
        m_connections = {m_store.autoSaveProjectFilesChanged.connect(follow),
                         m_store.autoSaveProjectFilesIntervalChanged.connect(follow)};
    });
    connect(&m_tick, &QTimer::timeout, this, [this] {
        m_runtime.post([this] { save(QDateTime::currentDateTime()); }, __FILE__, __LINE__, "save");
    });
    followSettings();
}

AutoSave::~AutoSave()
{
    m_tick.stop();
    // Queued behind the last save.
    m_runtime.call([this] {
        for (auto& connection : m_connections) {
            connection.disconnect();
        }
        m_dispatch.reset();
    });
}

void AutoSave::save(const QDateTime& now)
{
    const ProgramDispatch::State& state = m_dispatch->state();
    if (!state.modified || state.revision == m_savedRevision) {
        return;
    }
    const auto logger = hostLog();
    const STProjectFileSettingsInfo settings = m_store.getProjectFileSettings();
    const QString& folder = settings.autoSavePath;
    const QString reason = saveInto(folder, state, settings.autoSaveProjectFilesMaxNum, now);
    if (reason.isEmpty()) {
        m_savedRevision = state.revision;
        m_failedFolder = QString();
        logger->info("project saved automatically into {}", folder.toStdString());
    } else if (m_failedFolder.isNull() || m_failedFolder != folder) {
        m_failedFolder = folder.isNull() ? QLatin1String("") : folder;
        logger->error("project could not be saved automatically into {}: {}", folder.toStdString(),
                      reason.toStdString());
        m_failed(folder, reason);
    }
}

void AutoSave::followSettings()
{
    const auto settings = m_runtime.call([this] { return m_store.getProjectFileSettings(); });
    const int interval = settings.autoSaveProjectFilesInterval * millisecondsPerMinute;
    if (!settings.autoSaveProjectFiles) {
        m_tick.stop();
    } else if (!m_tick.isActive() || m_tick.interval() != interval) {
        m_tick.start(interval);
    }
}

} // namespace mivohost
