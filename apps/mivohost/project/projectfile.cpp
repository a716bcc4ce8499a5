#include "project/projectfile.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "project/autosave.h"

#include <mivoqutils/post.h>

#include <QtCore/QDateTime>
#include <QtCore/QDeadlineTimer>

#include <algorithm>
#include <utility>

namespace mivohost {

ProjectFile::ProjectFile(RuntimeThread& runtime, SettingsStore& store, PathObserver observer)
    : m_runtime(runtime), m_store(store), m_observer(std::move(observer)),
      m_dispatch(std::make_shared<ProgramDispatch>())
{
    m_runtime.call([this] {
        m_connections = {
            m_dispatch->stateChanged.connect(
                [this] { mivo::qutils::post(this, [this] { refresh(); }); }),
            m_dispatch->saveRequested.connect([this] {
                mivo::qutils::post(this, [this] {
                    if (!m_state.file.isEmpty() && !m_requests.isSaving()) {
                        save();
                    }
                });
            }),
            m_store.fadeTimesApplied.connect(&ProjectFile::applyFadeTimes, this),
        };
    });
    m_autoSave = std::make_unique<AutoSave>(runtime, store, m_dispatch, m_observer);
    connect(m_autoSave.get(), &AutoSave::saved, this,
            [this](const QString& folder, const QString& reason) {
                if (!reason.isEmpty()) {
                    fail("AutomaticSaveFailed", folder, reason);
                }
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

void ProjectFile::fail(const char* key, const QString& path, const QString& reason)
{
    emit failed(QString::fromLatin1(key), fileProblem(path, reason));
}

void ProjectFile::start()
{
    m_runtime.call([this, show = sampleShow()] { createOnRuntime(show); });
    refresh();
    const bool openLast =
        m_runtime.call([this] { return m_store.getProjectFileSettings().openRecentFiles; });
    const QStringList recent = keptRecentFiles();
    const auto offer = [this](bool /*done*/) {
        m_offered = unsavedProjects().value(0);
        if (!m_offered.isEmpty()) {
            emit unsavedFound(m_offered);
        }
    };
    if (openLast && !recent.isEmpty()) {
        open(recent.first(), offer);
    } else {
        mivo::qutils::post(this, [offer] { offer(true); });
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
    m_dispatch->replace(std::move(show), {});
}

void ProjectFile::applyFadeTimes(double fadeIn, double fadeOut)
{
    const int programs = m_dispatch->setFadeTimes(fadeIn, fadeOut);
    hostLog()->info("fade in {} s and fade out {} s for all programs: {} changed", fadeIn, fadeOut,
                    programs);
    mivo::qutils::post(this, [this, programs] { emit fadeTimesApplied(programs); });
}

template <typename Work, typename Finish>
void ProjectFile::run(const QString& path, bool saves, const Done& done, Work work, Finish finish)
{
    const auto giveUp = [this, path, saves, done](const QString& reason) {
        hostLog()->error("project {} is not waited for: {}", path.toStdString(),
                         reason.toStdString());
        fail(saves ? "ProjectNotSaved" : "ProjectNotOpened", path, reason);
        if (done) {
            mivo::qutils::post(this, [done] { done(false); });
        }
    };
    m_requests.start({path, saves, giveUp}, std::move(work),
                     [done, finish](auto result, bool isWaitedFor) {
                         const bool isDone = finish(std::move(result), isWaitedFor);
                         if (isWaitedFor && done) {
                             done(isDone);
                         }
                     });
}

void ProjectFile::open(const QString& file, const Done& done)
{
    openAs(file, false, done);
}

void ProjectFile::openAs(const QString& file, bool unsaved, const Done& done)
{
    refresh();
    run(
        file, false, done, [file] { return readProject(file); },
        [this, file, unsaved, revision = m_state.revision](ReadProject result, bool waited) {
            if (!waited) {
                return false;
            }
            const bool isSaveOf = QDir::isAbsolutePath(result.automaticSaveOf); // else it is forged
            const QString path = !unsaved   ? cleanPath(file)
                                 : isSaveOf ? result.automaticSaveOf
                                            : QString();
            QString reason = result.error;
            if (result.project) {
                reason = m_runtime.call([&] {
                    if (m_dispatch->state().revision != revision) {
                        return QStringLiteral("the open project has been changed meanwhile");
                    }
                    m_dispatch->replace(std::move(*result.project), path, unsaved);
                    const auto* program = m_dispatch->state().project.toPlayOnOpening();
                    if (program && m_store.getProjectFileSettings().openProjectFileDefaultPlay) {
                        m_dispatch->play(program->id);
                    }
                    return QString();
                });
            }
            if (!reason.isEmpty()) {
                hostLog()->error("project {} could not be opened: {}", file.toStdString(),
                                 reason.toStdString());
                fail("ProjectNotOpened", file, reason);
                return false;
            }
            hostLog()->info("project {} open", file.toStdString());
            refresh();
            if (!unsaved) {
                addRecentFile(path);
            }
            return true;
        });
}

void ProjectFile::save(const Done& done)
{
    saveAs(m_state.file, done);
}

void ProjectFile::saveAs(const QString& file, const Done& done)
{
    refresh();
    const QString path = cleanPath(file);
    run(
        path, true, done,
        [path, project = m_state.project, revision = m_state.revision,
         written = path == m_state.file ? m_writtenRevision : nullptr] {
            QString reason = writeProject(path, project);
            if (written && reason.isEmpty()) {
                *written = revision;
            }
            return reason;
        },
        [this, path, revision = m_state.revision](const QString& reason, bool waited) {
            if (!reason.isEmpty()) {
                hostLog()->error("project {} could not be saved: {}", path.toStdString(),
                                 reason.toStdString());
                fail("ProjectNotSaved", path, reason);
                return false;
            }
            hostLog()->info("project {} saved", path.toStdString());
            m_runtime.call([&] {
                // When it was not waited for, the project may have another file by now.
                if (waited || m_dispatch->state().file == path) {
                    m_dispatch->setSaved(path, revision);
                }
            });
            if (!waited) {
                emit told(QStringLiteral("ProjectSavedLate"), QDir::toNativeSeparators(path));
            }
            refresh();
            if (!m_state.modified) {
                goOn(); // what was saved before an end that did not come is older
            }
            addRecentFile(path);
            return true;
        });
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
                               [this](const QString& file) { return m_missing.contains(file); }),
                files.end());
    return files;
}

void ProjectFile::checkRecentFiles()
{
    m_check.start(
        [files = keptRecentFiles(), observer = m_observer] {
            if (observer && !files.isEmpty()) {
                observer(files.first());
            }
            return missingFiles(files);
        },
        [this](const QStringList& missing) {
            m_missing = missing;
            emit recentFilesChecked();
        });
}

void ProjectFile::saveCompleted()
{
    refresh();
    const auto saveAutomatically = [this](bool saved) {
        if (!saved) {
            m_autoSave->save(QDateTime::currentDateTime());
        }
    };
    if (m_state.file.isEmpty()) {
        saveAutomatically(false);
    } else if (m_state.modified) {
        save(saveAutomatically); // the file's drive may be disconnected
    }
}

void ProjectFile::afterSaves(std::function<void()> then)
{
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this,
            [this, timer, then = std::move(then), deadline = QDeadlineTimer(5000)] {
                if ((m_requests.isWaiting() || m_autoSave->isSaving()) && !deadline.hasExpired()) {
                    return;
                }
                timer->stop();
                timer->deleteLater();
                then();
            });
    timer->start(20);
}

void ProjectFile::discardChanges()
{
    goOn();
    refresh();
    m_settledRevision = m_state.revision;
}

void ProjectFile::rescue()
{
    const auto [modified, revision] = m_runtime.call(
        [this] { return std::pair(m_dispatch->state().modified, m_dispatch->state().revision); });
    if (!modified) {
        goOn();
        return;
    }
    if (revision == m_settledRevision) {
        return;
    }
    const QString file = m_autoSave->saveAtTheEnd();
    if (!file.isEmpty()) {
        m_settledRevision = revision;
        QStringList files = unsavedProjects();
        files.removeAll(m_rescued);
        files.prepend(file);
        setUnsavedProjects(files.mid(0, mostUnsaved));
        m_rescued = file;
    }
}

void ProjectFile::rescueAndFinish()
{
    rescue();
    FileRequests::finishSaves(std::chrono::seconds(5));
    // Without the event loop nobody has been told of the save that has ended.
    if (*m_writtenRevision == m_settledRevision && !m_rescued.isEmpty()) {
        dropUnsaved(std::exchange(m_rescued, {}));
    }
}

void ProjectFile::goOn()
{
    if (!m_rescued.isEmpty()) {
        m_settledRevision = -1;
        dropUnsaved(std::exchange(m_rescued, {}));
    }
}

QStringList ProjectFile::unsavedProjects() const
{
    return m_runtime.call([this] { return m_store.getUnsavedProject(); })
        .split('\n', Qt::SkipEmptyParts);
}

void ProjectFile::setUnsavedProjects(const QStringList& files)
{
    m_runtime.call([this, text = files.join('\n')] { m_store.setUnsavedProject(text); });
}

void ProjectFile::openUnsaved()
{
    openAs(m_offered, true, [this, file = m_offered](bool done) {
        if (done) {
            dropUnsaved(file);
        }
    });
}

void ProjectFile::forgetUnsaved()
{
    dropUnsaved(m_offered);
}

void ProjectFile::dropUnsaved(const QString& file)
{
    QStringList files = unsavedProjects();
    files.removeAll(file);
    setUnsavedProjects(files);
}

void ProjectFile::refresh()
{
    m_state = m_runtime.call([this] { return m_dispatch->state(); });
    emit changed();
}

void ProjectFile::addRecentFile(const QString& file)
{
    QStringList files{file};
    for (const QString& kept : keptRecentFiles()) {
        if (!isSamePath(kept, file)) {
            files.append(kept);
        }
    }
    m_missing.removeAll(file);
    const QString text = QStringList(files.mid(0, mostRecentFiles)).join('\n');
    m_runtime.call([this, &text] { m_store.setRecentProjectFiles(text); });
    emit changed();
}

} // namespace mivohost
