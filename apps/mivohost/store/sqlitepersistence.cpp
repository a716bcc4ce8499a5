#include "store/sqlitepersistence.h"

#include "base/filerequests.h"
#include "store/database.h"
#include "store/statement.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#else
#include "zrcutils/heldfile.h"
#include "zrcutils/winsystem.h"
#endif

namespace mivohost {

namespace {

using Status = SqlitePersistence::Status;

constexpr qint64 databaseHeader = 100;
constexpr qint64 walHeader = 32;
constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

/// A copy that was made once, by its number: the clock of a machine may go back.
QString copyPath(const QString& path, int number)
{
    return QStringLiteral("%1.copy-%2").arg(path, QString::number(number));
}

/// The numbers of the copies that there are, the newest first.
std::vector<int> copiesOf(const QString& path)
{
    const QFileInfo file(path);
    const QString prefix = file.fileName() + QStringLiteral(".copy-");
    std::vector<int> numbers;
    for (const QString& name : file.dir().entryList(QDir::Files | QDir::Hidden)) {
        bool isNumber = false;
        const int number = name.mid(prefix.size()).toInt(&isNumber);
        if (name.startsWith(prefix) && isNumber) {
            numbers.push_back(number);
        }
    }
    std::sort(numbers.rbegin(), numbers.rend());
    return numbers;
}

/// Whether this version can read the copy.
bool readCopy(const QString& path, QVariantHash& rows)
{
    Database database(path, SQLITE_OPEN_READONLY);
    rows.clear();
    return database.status() == Status::opened && database.check() && database.read(rows);
}

/// The newest copy that can be read, or nothing.
QString goodCopyOf(const QString& path, QVariantHash& rows)
{
    for (const int number : copiesOf(path)) {
        const QString copy = copyPath(path, number);
        if (readCopy(copy, rows)) {
            return copy;
        }
    }
    return {};
}

/// Creates the file with the settings of `source`; null: without any. Returns why it failed, or an
/// empty text.
QString makeFile(const QString& path, sqlite3* source)
{
    QFile::remove(path); // a process that was killed here left it, as the journal
    QFile::remove(path + QStringLiteral("-journal"));
    Database fresh(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (fresh.status() != Status::opened) {
        return fresh.error();
    }
    QFile::setPermissions(path, ownerOnly);
    if (source == nullptr ? fresh.makeTable()
                          : fresh.copyFrom(source) && fresh.run("PRAGMA journal_mode=DELETE")) {
        return {};
    }
    return fresh.error();
}

/// Renames a file to a free name. Returns why it failed, or an empty text.
QString rename(const QString& from, const QString& to)
{
#ifdef Q_OS_WIN
    // Qt would copy a file that is held for a moment, into a name at which nothing partial may be.
    DWORD code = ERROR_SUCCESS;
    zrcutils::tryWhileHeld(zrcutils::heldFor, [&] {
        const bool isDone = MoveFileExW(QDir::toNativeSeparators(from).toStdWString().c_str(),
                                        QDir::toNativeSeparators(to).toStdWString().c_str(),
                                        MOVEFILE_WRITE_THROUGH);
        code = isDone ? ERROR_SUCCESS : GetLastError();
        return !zrcutils::isHeld(code);
    });
    return code == ERROR_SUCCESS ? QString() : qt_error_string(static_cast<int>(code));
#else
    QFile file(from);
    return file.rename(to) ? QString() : file.errorString();
#endif
}

/// What is to be put aside when the file at `path` is damaged.
QStringList partsOf(const QString& path)
{
    QStringList parts;
    for (const char* suffix : {"-wal", "-shm", "-journal", ""}) {
        if (QFileInfo::exists(path + QLatin1String(suffix))) {
            parts.append(QLatin1String(suffix));
        }
    }
    return parts;
}

/// Renames the file and what SQLite keeps beside it, all of it or nothing. Returns why it failed,
/// or an empty text; `names` gets the new names.
QString putAside(const QString& path, QStringList& names)
{
    const QString stem =
        path + QStringLiteral(".unreadable-")
        + QLocale::c().toString(QDateTime::currentDateTimeUtc(), QStringLiteral("yyyyMMdd-hhmmss"));
    QString aside = stem;
    for (int n = 2; !partsOf(aside).isEmpty(); ++n) {
        aside = stem + QLatin1Char('-') + QString::number(n);
    }
    QStringList moved;
    for (const QString& part : partsOf(path)) {
        const QString error = rename(path + part, aside + part);
        if (!error.isEmpty()) {
            for (const QString& back : qAsConst(moved)) {
                rename(aside + back, path + back);
            }
            return error;
        }
        moved.append(part);
        names.prepend(QFileInfo(aside + part).fileName());
    }
    return {};
}

/// SQLite would make an empty database of such a file, and throw away the writes beside it.
QString missingPart(const QString& path, bool hasCopies)
{
    const QFileInfo file(path);
    if (file.exists() && (file.size() >= databaseHeader || !file.isFile())) {
        return {};
    }
    if (file.exists()) {
        return file.size() == 0 ? QStringLiteral("the file is empty")
                                : QStringLiteral("the file is cut off");
    }
    const bool hasWrites = QFileInfo(path + QStringLiteral("-wal")).size() > walHeader;
    return hasWrites || hasCopies ? QStringLiteral("the file is missing") : QString();
}

bool writeRow(sqlite3* database, const QString& key, const QVariant& value)
{
    return Statement(database,
                     "INSERT INTO setting (key, value) VALUES (?, ?) "
                     "ON CONFLICT (key) DO UPDATE SET value = excluded.value",
                     key, value)
        .run();
}

} // namespace

/// Takes the lock and tries once to open the file; `result` says how that ended.
std::unique_ptr<SqlitePersistence> SqlitePersistence::openLocked(const QString& path,
                                                                 Opened& result)
{
    std::unique_ptr<SqlitePersistence> persistence(new SqlitePersistence(path));
    // SQLite locks the file itself, which somebody may replace; this locks its path.
    const std::string lockPath = (path + QStringLiteral(".lock")).toStdString();
    const auto locked = persistence->m_lock.lock(lockPath, Database::busyTimeout);
    if (locked != FileLock::Result::locked) {
        const bool inUse = locked == FileLock::Result::inUse;
        result.status = inUse ? Status::inUse : Status::failed;
        result.error = fileProblem(QString::fromStdString(lockPath),
                                   QString::fromStdString(persistence->m_lock.error()));
        return persistence;
    }
    if (QFileInfo(path).isDir()) { // SQLite would say that it cannot be written
        result.error = QString::fromStdString(std::generic_category().message(EISDIR));
        return persistence;
    }
    result.error = missingPart(path, !copiesOf(path).empty());
    if (!result.error.isEmpty()) {
        result.status = Status::damaged;
        return persistence;
    }
    if (!QFileInfo::exists(path)) { // made aside, so that no crash leaves an empty file
        const QString fresh = path + QStringLiteral(".new");
        result.error = makeFile(fresh, nullptr);
        if (result.error.isEmpty()) {
            result.error = rename(fresh, path);
        }
        if (!result.error.isEmpty()) {
            result.status = Status::failed;
            return persistence;
        }
    }
    QFile::setPermissions(path, ownerOnly);
    Database database(path, SQLITE_OPEN_READWRITE);
    database.moveLogOnClose(false); // until the file is known to be whole
    // The exclusive mode comes first: without it SQLite needs a file of shared memory. Each commit
    // is one flushed write to the log; the checkpoint after it keeps the file complete by itself.
    if (database.status() == Status::opened && database.run("PRAGMA locking_mode=EXCLUSIVE")
        && database.check() && database.read(persistence->m_rows)
        && database.run("PRAGMA journal_mode=WAL") && database.run("PRAGMA synchronous=FULL")
        && database.run("PRAGMA wal_autocheckpoint=1") && database.run("BEGIN IMMEDIATE; COMMIT")) {
        persistence->m_file = idOf(path);
        persistence->m_database = database.release();
    }
    result.status = database.status();
    result.error = database.error();
    return persistence;
}

SqlitePersistence::Opened SqlitePersistence::open(const QString& path)
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.exists() && QDir().mkpath(folder.filePath())) {
        QFile::setPermissions(folder.filePath(), ownerOnly | QFileDevice::ExeOwner);
    }
    Opened result;
    auto persistence = openLocked(path, result);
    if (result.status == Status::opened) {
        result.persistence = std::move(persistence);
    } else if (result.status == Status::damaged) {
        QVariantHash rows;
        result.copyTime = QFileInfo(goodCopyOf(path, rows)).lastModified();
    }
    return result;
}

SqlitePersistence::Opened SqlitePersistence::recover(const QString& path)
{
    Opened result;
    auto persistence = openLocked(path, result);
    if (result.status != Status::damaged) {
        if (result.status == Status::opened) {
            result.persistence = std::move(persistence);
        }
        return result;
    }
    QVariantHash rows;
    const QString copy = goodCopyOf(path, rows);
    const QString fresh = path + QStringLiteral(".new");
    {
        const Database source(copy, SQLITE_OPEN_READONLY); // without a path, an empty database
        // Before anything is moved: the disk may be full.
        result.error = makeFile(fresh, copy.isEmpty() ? nullptr : source.handle());
    }
    QStringList aside;
    if (result.error.isEmpty()) {
        result.error = putAside(path, aside);
    }
    if (result.error.isEmpty()) {
        result.error = rename(fresh, path);
    }
    if (!result.error.isEmpty()) {
        result.status = Status::failed;
        return result;
    }
    persistence.reset(); // gives up the lock, to be taken again
    result = open(path);
    result.isReplaced = true;
    result.aside = aside;
    result.copyTime = QFileInfo(copy).lastModified();
    return result;
}

SqlitePersistence::~SqlitePersistence()
{
    sqlite3_close(m_database); // which moves the log into the file and removes it
}

QString SqlitePersistence::keepCopy()
{
    QVariantHash rows;
    const QString newest = goodCopyOf(m_path, rows);
    if (!newest.isEmpty() && rows == m_rows) { // a new copy would hold the same
        QFile file(newest);
        return file.open(QIODevice::ReadWrite)
                       && file.setFileTime(QDateTime::currentDateTime(),
                                           QFileDevice::FileModificationTime)
                   ? QString()
                   : file.errorString();
    }
    const std::vector<int> older = copiesOf(m_path);
    const QString fresh = m_path + QStringLiteral(".new");
    QString error = makeFile(fresh, m_database);
    if (error.isEmpty()) {
        error = rename(fresh, copyPath(m_path, older.empty() ? 1 : older.front() + 1));
    }
    if (!error.isEmpty()) {
        QFile::remove(fresh);
        return error;
    }
    int good = 1;
    for (const int number : older) {
        if (good == copiesKept) {
            QFile::remove(copyPath(m_path, number));
        } else if (readCopy(copyPath(m_path, number), rows)) {
            ++good;
        }
    }
    return {};
}

/// On Windows all are the same: there nobody can replace a file that is open.
SqlitePersistence::FileId SqlitePersistence::idOf(const QString& path)
{
#ifdef Q_OS_UNIX
    struct stat file
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &file) == 0) {
        return {file.st_dev, file.st_ino};
    }
#else
    Q_UNUSED(path)
#endif
    return {};
}

bool SqlitePersistence::write(const QVariantHash& settings)
{
    std::vector<Update> updates;
    for (auto setting = settings.begin(); setting != settings.end(); ++setting) {
        const qint64 revision = m_outbox ? m_outbox->revisionOf(setting.key()) : 0;
        updates.push_back({setting.key(), revision, setting.value(), Outbox::Waiting::add});
    }
    return update(updates);
}

bool SqlitePersistence::keepOutbox()
{
    m_outbox.emplace();
    if (m_outbox->open(m_database)) {
        return true;
    }
    m_error = QString::fromUtf8(sqlite3_errmsg(m_database));
    m_outbox.reset();
    return false;
}

template <typename Change>
bool SqlitePersistence::commit(Change change)
{
    const bool isSameFile = idOf(m_path) == m_file;
    const bool isDone = isSameFile && Statement(m_database, "BEGIN IMMEDIATE").run() && change();
    if (!isDone || !Statement(m_database, "COMMIT").run()) {
        m_error = isSameFile ? QString::fromUtf8(sqlite3_errmsg(m_database))
                             : QStringLiteral("the file was replaced or removed");
        if (sqlite3_get_autocommit(m_database) == 0) { // some errors have rolled back already
            Statement(m_database, "ROLLBACK").run();
        }
        if (m_outbox) {
            m_outbox->open(m_database); // as it was before
        }
        return false;
    }
    m_error.clear();
    return true;
}

bool SqlitePersistence::setShow(const QString& id)
{
    return commit([&] { return m_outbox->setShow(id); });
}

bool SqlitePersistence::update(const std::vector<Update>& updates)
{
    const auto writeAll = [&] {
        return std::all_of(updates.begin(), updates.end(), [this](const Update& change) {
            return (!change.value || writeRow(m_database, change.key, *change.value))
                   && (!m_outbox || m_outbox->set(change.key, change.revision, change.waiting));
        });
    };
    if (!commit(writeAll)) {
        return false;
    }
    for (const Update& change : updates) {
        if (change.value) {
            m_rows.insert(change.key, *change.value);
        }
    }
    return true;
}

} // namespace mivohost
