#pragma once

#include "store/sqlitepersistence.h"

#include "support/files.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <sched.h>
#include <sys/mount.h>

using mivohost::SqlitePersistence;

/// The files of a user who has worked with the program: 80 undo steps in the last good copy of the
/// settings, 81 in the settings.
class Home
{
public:
    explicit Home(const QString& path) : m_path(path)
    {
        QDir().mkpath(QFileInfo(shortcuts()).path());
        auto opened = SqlitePersistence::open(store());
        EXPECT_TRUE(opened.persistence) << opened.error.toStdString();
        EXPECT_TRUE(opened.persistence->write("undoStep", 80));
        EXPECT_EQ(opened.persistence->keepCopy(), "");
        EXPECT_TRUE(opened.persistence->write("undoStep", 81));
        writeFile(shortcuts(), R"({"shortcut_info_list": []})");
        writeFile(data("mivohost.log"), "yesterday\n");
    }

    QString path() const { return m_path; }
    QString data(const QString& name) const { return m_path + "/data/mivo/mivohost/" + name; }
    QString store() const { return data("settings.sqlite"); }
    QString copy() const { return store() + ".copy-1"; }
    QString shortcuts() const { return m_path + "/data/mivo/mivohost_Display/shortcut.json"; }

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

private:
    QString m_path;
};

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
    void makeReadOnly() const
    {
        ASSERT_EQ(::mount("tmpfs", path().constData(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr),
                  0);
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
