#include "project/projectfile.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "project/autosave.h"

#include <QtCore/QDateTime>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <utility>

namespace mivohost {

namespace {

constexpr int wholeProject = -1; // all flags

} // namespace

ProjectFile::ProjectFile(RuntimeThread& runtime, SettingsStore& store)
    : m_runtime(runtime), m_store(store), m_dispatch(std::make_shared<ProgramDispatch>())
{
    const auto tellLater = [this](const char* key, const QString& path, const QString& reason) {
        QMetaObject::invokeMethod(
            this, [this, key, path, reason] { tell(key, path, reason); }, Qt::QueuedConnection);
    };
    m_runtime.call([this, tellLater] {
        m_connections = {
            m_dispatch->stateChanged.connect([this] {
                QMetaObject::invokeMethod(this, &ProjectFile::refresh, Qt::QueuedConnection);
            }),
            m_dispatch->saveFailed.connect([tellLater](const QString& path, const QString& reason) {
                tellLater("ProjectNotSaved", path, reason);
            }),
            m_store.fadeTimesApplied.connect(&ProjectFile::applyFadeTimes, this),
        };
    });
    m_autoSave = std::make_unique<AutoSave>(
        runtime, store, m_dispatch, [tellLater](const QString& folder, const QString& reason) {
            tellLater("AutomaticSaveFailed", folder, reason);
        });
}

ProjectFile::~ProjectFile()
{
    m_autoSave.reset();
    m_runtime.call([this] {
        for (auto& connection : m_connections) {
            connection.disconnect();
        }
        m_dispatch.reset();
    });
}

void ProjectFile::tell(const char* key, const QString& path, const QString& reason)
{
    emit failed(QString::fromLatin1(key), QStringLiteral("%1: %2").arg(path, reasonText(reason)));
}

void ProjectFile::start()
{
    const bool openLast =
        m_runtime.call([this] { return m_store.getProjectFileSettings().openRecentFiles; });
    const QStringList recent = keptRecentFiles();
    if (!openLast || recent.isEmpty() || !open(recent.first())) {
        m_runtime.call([this, show = sampleShow()] { createOnRuntime(show); });
        refresh();
    }
}

void ProjectFile::create()
{
    m_runtime.call([this, show = sampleShow()] {
        createOnRuntime(show);
        const auto logger = hostLog();
        logger->info("new project");
        if (m_store.getProjectFileSettings().newProjResetOutput) {
            logger->info("outputs reset");
        }
    });
    refresh();
}

void ProjectFile::createOnRuntime(Project show)
{
    show.setFadeTimes(m_store.getFadeInTime(), m_store.getFadeOutTime());
    m_dispatch->create(std::move(show));
}

void ProjectFile::applyFadeTimes(double fadeIn, double fadeOut)
{
    const int programs = m_dispatch->setFadeTimes(fadeIn, fadeOut);
    hostLog()->info("fade in {} s and fade out {} s for all programs: {} changed", fadeIn, fadeOut,
                    programs);
    QMetaObject::invokeMethod(
        this, [this, programs] { emit fadeTimesApplied(programs); }, Qt::QueuedConnection);
}

bool ProjectFile::open(const QString& file)
{
    const QString reason = m_runtime.call([this, &file] {
        const QString failure = m_dispatch->open(file);
        if (failure.isEmpty() && m_store.getProjectFileSettings().openProjectFileDefaultPlay) {
            if (const auto* program = m_dispatch->state().project.toPlayOnOpening()) {
                m_dispatch->play(program->id);
            }
        }
        return failure;
    });
    if (!reason.isEmpty()) {
        hostLog()->error("project {} could not be opened: {}", file.toStdString(),
                         reason.toStdString());
        tell("ProjectNotOpened", file, reason);
        return false;
    }
    refresh();
    addRecentFile();
    return true;
}

void ProjectFile::save()
{
    refresh();
    if (m_state.file.isEmpty()) {
        emit nameWanted();
        return;
    }
    m_runtime.call([this] { m_dispatch->saveProjectFile(wholeProject); });
    refresh();
    if (!m_state.modified) {
        addRecentFile();
    }
}

bool ProjectFile::saveAs(const QString& file)
{
    const bool saved = m_runtime.call([this, &file] { return m_dispatch->saveAs(file); });
    refresh();
    if (saved) {
        addRecentFile();
    }
    return saved;
}

void ProjectFile::play(qint64 id)
{
    m_runtime.call([this, id] { m_dispatch->play(id); });
    refresh();
}

QStringList ProjectFile::keptRecentFiles() const
{
    return m_runtime.call([this] { return m_store.getRecentProjectFiles(); })
        .split('\n', Qt::SkipEmptyParts);
}

QStringList ProjectFile::recentFiles() const
{
    QStringList files = keptRecentFiles();
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const QString& file) { return !QFileInfo::exists(file); }),
                files.end());
    return files.mid(0, mostRecentFiles);
}

void ProjectFile::saveCompleted()
{
    refresh();
    if (m_state.file.isEmpty() || m_state.modified) { // its own file may be away
        m_runtime.call([this] { m_autoSave->save(QDateTime::currentDateTime()); });
    } else {
        addRecentFile();
    }
}

void ProjectFile::refresh()
{
    m_state = m_runtime.call([this] { return m_dispatch->state(); });
    emit changed();
}

void ProjectFile::addRecentFile()
{
    QStringList files{m_state.file};
    for (const QString& file : keptRecentFiles()) {
        if (QFileInfo(file) != QFileInfo(m_state.file)) {
            files.append(file);
        }
    }
    const QString text = QStringList(files.mid(0, mostRecentFiles)).join('\n');
    m_runtime.call([this, &text] { m_store.setRecentProjectFiles(text); });
    emit changed();
}

} // namespace mivohost
