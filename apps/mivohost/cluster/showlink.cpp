#include "cluster/showlink.h"

#include "base/hostlog.h"
#include "cluster/machines.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QUuid>

#include <algorithm>
#include <utility>

namespace mivohost {

using Status = etcd::Answer::Status;

namespace {

constexpr int mostKeys = 200000;   // of a show
constexpr int answerTime = 3000;   // ms
constexpr int refusalPause = 5000; // also of this machine's disk

/// So that machines which lost the same server do not all come back at once.
int jittered(int milliseconds)
{
    return milliseconds * 3 / 4
           + static_cast<int>(QRandomGenerator::global()->bounded(1 + milliseconds / 2));
}

} // namespace

ShowLink::ShowLink(EtcdServers servers, QByteArray prefix, QString machine)
    : m_servers(std::move(servers)), m_prefix(std::move(prefix)), m_machine(std::move(machine))
{
    m_pause.setSingleShot(true);
    m_check.setSingleShot(true);
    m_again.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &ShowLink::connectToServer);
    connect(&m_check, &QTimer::timeout, this, &ShowLink::checkWatch);
    connect(&m_again, &QTimer::timeout, this, [this] {
        if (!m_isConnected || m_revision == 0) { // it is being read, or that is to come
            readAgain();
            return;
        }
        m_client->endWatch(); // what it reports would be newer than what is read
        m_check.stop();
        m_isAsked = false;
        m_revision = 0;
        readAll();
    });
}

ShowLink::~ShowLink() = default;

void ShowLink::start()
{
    m_client = std::make_unique<EtcdClient>(m_servers); // which belongs to the thread it is made on
    m_presence = std::make_unique<Presence>(*m_client, Machines::recordKey(m_prefix, m_machine),
                                            Machines::liveKey(m_prefix, m_machine));
    connect(m_client.get(), &EtcdClient::reported, this, &ShowLink::take);
    connect(m_client.get(), &EtcdClient::watchEnded, this, &ShowLink::fail);
    connectToServer();
}

void ShowLink::describe(const QByteArray& record)
{
    m_presence->setRecord(record);
}

void ShowLink::send(const std::vector<SentChange>& batch)
{
    std::vector<etcd::Write> writes;
    for (const SentChange& change : batch) {
        writes.push_back(change.write);
    }
    m_client->ask(etcd::writeAll(writes), [this, batch](const etcd::Answer& answer) {
        if (isFailure(answer)) {
            return;
        }
        tell(m_isConnected, answer.error);
        if (answer.status == Status::ok) {
            emit answered(batch, answer);
        } else { // and is tried again
            QTimer::singleShot(refusalPause, m_client.get(),
                               [this, batch, answer] { emit answered(batch, answer); });
        }
    });
}

void ShowLink::reconnect()
{
    m_failures = 0;
    fail(QStringLiteral("the machine has slept"));
}

void ShowLink::readAgain()
{
    if (!m_again.isActive()) {
        m_again.start(refusalPause);
    }
}

void ShowLink::connectToServer()
{
    m_client->signIn([this](const etcd::Answer& answer) {
        if (answer.status != Status::ok) {
            fail(answer.error);
        } else {
            readId();
        }
    });
}

/// The servers may be those of another show by now, whose changes do not follow what was read.
void ShowLink::readId()
{
    const QByteArray key = SharedSettings::idKey(m_prefix);
    m_client->ask(etcd::range(key, key + '\0', 1, 0), [this](const etcd::Answer& answer) {
        if (answer.status != Status::ok) {
            fail(answer.error);
            return;
        }
        if (SharedSettings::idAmong(answer.values, m_prefix) != m_id) {
            m_revision = 0;
        }
        if (answer.values.empty()) {
            makeId();
        } else if (m_revision == 0) {
            readAll();
        } else {
            startWatch();
        }
    });
}

/// Of machines that come at once one makes it; all read it with the other keys. Where a user may
/// only read, the show has none.
void ShowLink::makeId()
{
    const QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    const auto request = etcd::writeAll({{SharedSettings::idKey(m_prefix), id, 0}});
    m_client->ask(request, [this](const etcd::Answer& answer) {
        if (!isFailure(answer)) {
            readAll();
        }
    });
}

void ShowLink::readAll()
{
    readPage(SharedSettings::idKey(m_prefix), 0, 0);
}

void ShowLink::readPage(const QByteArray& from, qint64 revision, int before)
{
    const auto request = etcd::range(from, etcd::endOf(m_prefix), m_pageSize, revision);
    m_client->ask(request, [this, from, revision, before](const etcd::Answer& answer) {
        const int count = before + static_cast<int>(answer.values.size());
        if (answer.status == Status::tooLong && m_pageSize > 1) { // somebody has put long values
            m_pageSize /= 2;
            readPage(from, revision, before);
        } else if (answer.status != Status::ok) {
            fail(answer.error);
        } else if (count > mostKeys || (answer.hasMore && answer.values.empty())) {
            fail(QStringLiteral("more settings than a show may have"));
        } else {
            const qint64 first = revision == 0 ? answer.revision : revision;
            if (revision == 0) {
                m_id = SharedSettings::idAmong(answer.values, m_prefix);
            }
            emit pageRead({answer.values, revision == 0, !answer.hasMore});
            if (answer.hasMore) {
                readPage(answer.values.back().key + '\0', first, count);
            } else {
                m_revision = first;
                startWatch();
            }
        }
    });
}

void ShowLink::startWatch()
{
    m_client->watch(m_prefix, m_revision + 1);
    m_check.start(answerTime);
}

void ShowLink::take(const etcd::Report& report)
{
    const bool isOlder = report.isStart && report.revision < m_revision;
    if (report.status == Status::compacted || isOlder) {
        hostLog()->info("all settings of the show are read again: {}",
                        isOlder ? "the server has an older state than this machine"
                                : "the changes since then are not kept any more");
        m_revision = 0;
        fail(QStringLiteral("everything is read again"));
        return;
    }
    if (report.status != Status::ok) {
        fail(report.error);
        return;
    }
    if (report.isStart) {
        tell(true, {});
        m_presence->begin();
    }
    if (!report.values.empty()) {
        m_failures = 0;
        emit changed(report.values);
        if (!report.isPart) {
            m_revision = std::max(m_revision, report.values.back().revision);
        }
    }
    m_isAsked = false;
    m_check.start(jittered(silence));
}

/// A watch that reports nothing may have ended without a word: a write shows whether it has.
void ShowLink::checkWatch()
{
    if (!m_isConnected || m_isAsked) {
        fail(QStringLiteral("no answer in time"));
        return;
    }
    m_failures = 0;
    m_isAsked = true;
    m_check.start(answerTime);
    m_client->ask(etcd::put(m_prefix + "pulse", {}), [this](const etcd::Answer& answer) {
        if (isFailure(answer)) {
            return;
        }
        tell(m_isConnected, answer.error);
        if (answer.status != Status::ok) { // one that takes no writes may report those of others
            m_isAsked = false;
            m_check.start(jittered(silence));
        }
    });
}

bool ShowLink::isFailure(const etcd::Answer& answer)
{
    const bool isFailure = answer.status != Status::ok && answer.status != Status::refused;
    if (isFailure) {
        fail(answer.error);
    }
    return isFailure;
}

void ShowLink::fail(const QString& reason)
{
    m_check.stop();
    m_isAsked = false;
    tell(false, reason);
    m_presence->end();
    m_client->nextServer();
    // Each server once without a pause, then slower and slower.
    const int further = m_failures++ - m_client->serverCount();
    m_pause.start(further < 0 ? 0 : jittered(std::min(longestPause, 250 << std::min(further, 5))));
}

void ShowLink::tell(bool isConnected, const QString& reason)
{
    if (m_isConnected != isConnected || m_reason != reason) {
        m_isConnected = isConnected;
        m_reason = reason;
        emit stateChanged(isConnected, m_client->server(), reason);
    }
}

} // namespace mivohost
