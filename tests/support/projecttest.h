#pragma once

#include "project/projectfile.h"

#include "support/fulldisk.h"
#include "support/test.h"

namespace projecttest {

using namespace mivohost;

inline Project smallShow()
{
    return {{{"First", {{1, "One"}, {2, "Two"}}}, {"Empty", {}}, {"Last", {{9, "Nine \"9\"; 九"}}}},
            {},
            -1};
}

/// Begins something that tells its end, waits for that, and returns what was told.
inline bool ended(const std::function<void(std::function<void(bool)> done)>& begin)
{
    std::optional<bool> result;
    begin([&result](bool done) { result = done; });
    return QTest::qWaitFor([&result] { return result.has_value(); }, 20000) && *result;
}

/// Paths with "hangs" in them hang until they are to answer.
class Hanging
{
public:
    ~Hanging() { answer(); }
    void answer()
    {
        if (!std::exchange(m_answered, true)) {
            m_promise.set_value();
        }
    }
    PathObserver observer() const
    {
        return [answered = m_future](const QString& path) {
            if (path.contains("hangs")) {
                answered.wait();
            }
        };
    }

private:
    bool m_answered = false;
    std::promise<void> m_promise;
    std::shared_future<void> m_future = m_promise.get_future().share();
};

struct ProjectTest : ::testing::Test
{
    ProjectTest() { start(); }

    /// A store with these rows, and the project file over it.
    void start(const QVariantHash& rows = {})
    {
        failures.reset();
        file.reset();
        store = std::make_unique<TestStore>(rows);
        file = std::make_unique<ProjectFile>(runtime, *store, hanging.observer());
        failures = std::make_unique<QSignalSpy>(file.get(), &ProjectFile::failed);
        file->start();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !file->requests().isWaiting(); }));
    }

    /// Starts once more with what the store holds: the automatic save that is offered then.
    QString restart()
    {
        start(QVariantHash(store->kept.rows));
        QSignalSpy found(file.get(), &ProjectFile::unsavedFound);
        QTest::qWait(50);
        return found.value(0).value(0).toString();
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    QString makeFile(const QString& name, const Project& project = smallShow()) const
    {
        writeFile(path(name), projectToJson(project));
        return path(name);
    }
    bool open(const QString& name)
    {
        return ended([&](const ProjectFile::Done& done) { file->open(name, done); });
    }
    bool save()
    {
        return ended([this](const ProjectFile::Done& done) { file->save(done); });
    }
    bool saveAs(const QString& name)
    {
        return ended([&](const ProjectFile::Done& done) { file->saveAs(name, done); });
    }
    qint64 playing() const { return file->state().playing; }
    QStringList savesOf(const QString& pattern = "*") const
    {
        return QDir(path("saves")).entryList({pattern}, QDir::Files | QDir::Hidden, QDir::Name);
    }

    LogCapture log;
    QTemporaryDir folder;
    RuntimeThread runtime;
    Hanging hanging;
    std::unique_ptr<TestStore> store;
    std::unique_ptr<ProjectFile> file;
    std::unique_ptr<QSignalSpy> failures;
};

} // namespace projecttest
