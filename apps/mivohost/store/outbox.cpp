#include "store/outbox.h"

#include "store/statement.h"

#include <algorithm>

namespace mivohost {

bool Outbox::open(sqlite3* database)
{
    const qint64 next = m_next + 1;
    *this = {};
    m_next = next;
    m_database = database;
    const bool made =
        Statement(database, "CREATE TABLE IF NOT EXISTS shared (key TEXT PRIMARY KEY, "
                            "revision INTEGER NOT NULL) WITHOUT ROWID")
            .run()
        && Statement(database, "CREATE TABLE IF NOT EXISTS outbox (number INTEGER PRIMARY KEY, "
                               "key TEXT NOT NULL UNIQUE)")
               .run()
        && Statement(database, "CREATE TABLE IF NOT EXISTS show (id TEXT NOT NULL)").run();
    Statement show(database, "SELECT id FROM show");
    while (show.step()) {
        m_show = show.text(0);
    }
    Statement shared(database, "SELECT key, revision FROM shared");
    while (shared.step()) {
        m_revisions.insert(shared.text(0), shared.number(1));
    }
    Statement waiting(database, "SELECT number, key FROM outbox");
    while (waiting.step()) {
        m_waiting.emplace(waiting.number(0), waiting.text(1));
        m_numbers.insert(waiting.text(1), waiting.number(0));
        m_next = std::max(m_next, waiting.number(0) + 1);
    }
    return made && show.isDone() && shared.isDone() && waiting.isDone();
}

bool Outbox::setShow(const QString& id)
{
    if (!m_show.isEmpty() && m_show != id) {
        if (!Statement(m_database, "DELETE FROM shared").run()
            || !Statement(m_database, "DELETE FROM outbox").run()) {
            return false;
        }
        m_revisions.clear();
        m_numbers.clear();
        m_waiting.clear();
    }
    m_show = id;
    return Statement(m_database, "DELETE FROM show").run()
           && Statement(m_database, "INSERT INTO show (id) VALUES (?)", id).run();
}

bool Outbox::set(const QString& key, qint64 revision, Waiting waiting)
{
    if (revisionOf(key) != revision) {
        if (!Statement(m_database, "REPLACE INTO shared (key, revision) VALUES (?, ?)", key,
                       revision)
                 .run()) {
            return false;
        }
        m_revisions.insert(key, revision);
    }
    if (waiting == Waiting::keep || (waiting == Waiting::remove && !isWaiting(key))) {
        return true;
    }
    m_waiting.erase(numberOf(key));
    m_numbers.remove(key);
    if (waiting == Waiting::remove) {
        return Statement(m_database, "DELETE FROM outbox WHERE key = ?", key).run();
    }
    const qint64 number = m_next++;
    m_waiting.emplace(number, key);
    m_numbers.insert(key, number);
    return Statement(m_database, "REPLACE INTO outbox (number, key) VALUES (?, ?)", number, key)
        .run();
}

std::vector<Outbox::Change>
Outbox::oldest(int most, const std::function<bool(const QString& key)>& isTaken) const
{
    std::vector<Change> changes;
    for (const auto& [number, key] : m_waiting) {
        if (static_cast<int>(changes.size()) == most) {
            break;
        }
        if (isTaken(key)) {
            changes.push_back({key, number, revisionOf(key)});
        }
    }
    return changes;
}

} // namespace mivohost
