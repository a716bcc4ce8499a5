#include "cluster/presence.h"

namespace mivohost {

using Status = etcd::Answer::Status;

Presence::Presence(EtcdClient& client, const QByteArray& recordKey, const QByteArray& liveKey)
    : m_client(client), m_recordKey(recordKey), m_liveKey(liveKey)
{
    m_timer.setInterval(leaseTime * 1000 / 3);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { renew(); });
}

void Presence::setRecord(const QByteArray& record)
{
    if (m_record != record) {
        m_record = record;
        if (m_timer.isActive()) {
            putRecord();
        }
    }
}

void Presence::begin()
{
    m_timer.start();
    grant();
    putRecord();
}

void Presence::end()
{
    m_timer.stop();
    m_lease = 0;
}

void Presence::renew()
{
    if (m_lease == 0) {
        grant();
        return;
    }
    m_client.ask(etcd::keepLease(m_lease), [this](const etcd::Answer& answer) {
        const bool isGone = answer.status == Status::ok && answer.seconds == 0;
        if (isGone || answer.status == Status::refused) { // this machine was away for too long
            grant();
        }
    });
}

void Presence::grant()
{
    m_client.ask(etcd::grantLease(leaseTime), [this](const etcd::Answer& answer) {
        if (answer.status == Status::ok && answer.lease != 0) {
            m_lease = answer.lease;
            m_client.ask(etcd::put(m_liveKey, {}, m_lease), [this](const etcd::Answer& put) {
                m_lease = put.status == Status::ok ? m_lease : 0;
            });
        }
    });
}

void Presence::putRecord()
{
    m_client.ask(etcd::put(m_recordKey, m_record), [](const etcd::Answer& /*answer*/) {});
}

} // namespace mivohost
