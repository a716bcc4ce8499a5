#pragma once

#include "project/project.h"
#include "store/sqlitepersistence.h"

#include "support/program.h"
#include "support/test.h"

#include <sched.h>
#include <sys/mount.h>

using mivohost::SqlitePersistence;

/// The files of a user who has worked with the program: 80 undo steps in the last good copy of the
/// settings, 81 in the settings, and a project, which the program opens.
class Home
{
public:
    /// The project and the shortcuts are in the folder `works`, by default one of the home's.
    explicit Home(const QString& path, const QString& works = {})
        : m_path(path), m_works(works.isEmpty() ? path + "/works" : works)
    {
        QDir().mkpath(m_path + "/data/mivo");
        QDir().mkpath(m_works);
        EXPECT_TRUE(QFile::link(m_works, m_path + "/data/mivo/mivohost_Display"));
        keep("undoStep", 80);
        keep("openRecentFiles", 1);
        keep("recentProjectFiles", project());
        EXPECT_EQ(SqlitePersistence::open(store()).persistence->keepCopy(), "");
        keep("undoStep", 81);
        writeFile(project(), mivohost::projectToJson({{{"Group", {{1, "One"}}}}, {}, -1}));
        writeFile(shortcuts(), R"({"shortCutInfoList":[]})");
        writeFile(data("mivohost.log"), "yesterday\n");
    }

    /// Changes a setting, with no program running.
    void keep(const QString& key, const QVariant& value) const
    {
        EXPECT_TRUE(SqlitePersistence::open(store()).persistence->write({{key, value}}));
    }

    QString path() const { return m_path; }
    QString data(const QString& name) const { return m_path + "/data/mivo/mivohost/" + name; }
    QString store() const { return data("settings.sqlite"); }
    QString shortcuts() const { return m_works + "/shortcut.json"; }
    QString project() const { return m_works + "/show.mivo"; }

    /// Content of every file but the log and the locks.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> found;
        QDirIterator file(m_path, QDir::Files, QDirIterator::Subdirectories);
        while (file.hasNext()) {
            const QString name = file.next();
            if (!name.endsWith(".log") && !name.endsWith(".lock")) {
                found[name] = readFile(name);
            }
        }
        return found;
    }

    /// What the settings hold now, with no program running.
    QVariant undoStep() const
    {
        auto opened = SqlitePersistence::open(store());
        return opened.persistence ? opened.persistence->loadAll().value("undoStep") : QVariant();
    }

    /// The program that the project on the disk was last played with.
    qint64 lastPlayed() const
    {
        QString error;
        const auto project = mivohost::projectFromJson(readFile(this->project()), error);
        return project ? project->lastPlayed : -2;
    }

private:
    QString m_path;
    QString m_works;
};

/// Whether the program shows its main window and takes keys.
inline testing::AssertionResult isUp(Program& program)
{
    return program.hasScreen() ? program.says("main window open") : testing::AssertionFailure();
}

/// The first word of a field of a process's file, such as "VmRSS:" of "/proc/1/status".
inline QByteArray fieldOf(const QString& file, const char* name)
{
    const QByteArray text = readFile(file);
    return text.mid(text.indexOf(name) + int(qstrlen(name)), 20).simplified().split(' ')[0];
}

/// A disk of its own for each test, where the system permits it.
class Disk
{
public:
    Disk()
    {
        m_mounted = ::unshare(CLONE_NEWNS) == 0
                    && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
                    && ::mount("tmpfs", path().constData(), "tmpfs", 0, "size=4m") == 0;
    }
    ~Disk()
    {
        if (m_mounted) {
            ::umount2(path().constData(), MNT_DETACH);
        }
    }

    bool isMounted() const { return m_mounted; }
    QByteArray path() const { return m_folder.path().toUtf8(); }
    void setReadOnly(bool on) const
    {
        const unsigned long flags = MS_REMOUNT | (on ? MS_RDONLY : 0);
        ASSERT_EQ(::mount("tmpfs", path().constData(), "tmpfs", flags, nullptr), 0);
    }
    void fill() const
    {
        QFile filler(m_folder.filePath("filler"));
        ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(QByteArray(512, 'x')) > 0) {
        }
    }
    void makeRoom() const { QFile::remove(m_folder.filePath("filler")); }

private:
    QTemporaryDir m_folder;
    bool m_mounted = false;
};
