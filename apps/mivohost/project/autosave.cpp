#include "project/autosave.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"

#include <mivoqutils/post.h>

#include <QtCore/QDateTime>

#include <chrono>
#include <utility>

namespace mivohost {

using mivo::qutils::FileTask;

namespace {

constexpr int millisecondsPerMinute = 60 * 1000;

} // namespace

AutoSave::AutoSave(RuntimeThread& runtime, SettingsStore& store,
                   std::shared_ptr<ProgramDispatch> dispatch, PathObserver observer)
    : m_runtime(runtime), m_store(store), m_dispatch(std::move(dispatch)),
      m_observer(std::move(observer))
{
    const auto follow = [this](auto) { mivo::qutils::post(this, [this] { followSettings(); }); };
    m_runtime.call([&] {
        m_connections = {m_store.autoSaveProjectFilesChanged.connect(follow),
                         m_store.autoSaveProjectFilesIntervalChanged.connect(follow)};
    });
    connect(&m_tick, &QTimer::timeout, this, [this] { save(QDateTime::currentDateTime()); });
    followSettings();
}

AutoSave::~AutoSave()
{
    m_runtime.call([this] {
        for (auto& connection : m_connections) {
            connection.disconnect();
        }
        m_dispatch.reset();
    });
}

AutomaticSave AutoSave::snapshot(const QDateTime& now) const
{
    const ProgramDispatch::State& state = m_dispatch->state();
    const STProjectFileSettingsInfo settings = m_store.getProjectFileSettings();
    return {settings.autoSavePath,
            settings.autoSaveProjectFilesMaxNum,
            state.project,
            state.file,
            now,
            m_store.getUnsavedProject().split('\n', Qt::SkipEmptyParts)};
}

void AutoSave::save(const QDateTime& now)
{
    const auto [wanted, revision, save] = m_runtime.call([this, &now] {
        const ProgramDispatch::State& state = m_dispatch->state();
        return std::tuple(state.modified && state.revision != m_savedRevision, state.revision,
                          snapshot(now));
    });
    if (!wanted || (isSaving() && m_savingInto == save.folder)) {
        return;
    }
    m_savingInto = save.folder;
    m_task = std::make_unique<FileTask>();
    connect(m_task.get(), &FileTask::overdue, this, [this, folder = save.folder] {
        hostLog()->error("no automatic save into {}: no answer", folder.toStdString());
        emit saved(folder, QStringLiteral("no answer"));
    });
    m_task->start(
        [save = save, observer = m_observer] {
            if (observer) {
                observer(save.folder);
            }
            return saveAutomatically(save);
        },
        [this, folder = save.folder, revision = revision](const AutomaticSaveResult& result) {
            if (result.error.isEmpty()) {
                m_savedRevision = revision;
                hostLog()->info("project saved automatically into {}", folder.toStdString());
            } else {
                hostLog()->error("project could not be saved automatically into {}: {}",
                                 folder.toStdString(), result.error.toStdString());
            }
            emit saved(folder, result.error);
        });
}

QString AutoSave::saveAtTheEnd()
{
    AutomaticSave save = m_runtime.call([this] { return snapshot(QDateTime::currentDateTime()); });
    AutomaticSaveResult result;
    for (const QString& folder : {save.folder, ownSavesFolder()}) {
        save.folder = folder;
        FileTask task;
        task.start(
            [save, observer = m_observer] {
                if (observer) {
                    observer(save.folder);
                }
                return saveAutomatically(save);
            },
            [&result](const AutomaticSaveResult& ended) { result = ended; });
        if (task.waitFor(std::chrono::seconds(2)) && result.error.isEmpty()) {
            hostLog()->info("unsaved project saved as {}", result.file.toStdString());
            return result.file;
        }
        hostLog()->error("unsaved project could not be saved into {}: {}", folder.toStdString(),
                         result.error.toStdString());
    }
    return {};
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
