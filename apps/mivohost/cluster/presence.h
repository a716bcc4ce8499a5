#pragma once

#include "cluster/etcdclient.h"

#include <QtCore/QTimer>

namespace mivohost {

/// Tells the other machines of a show that this one is there: by a key that goes some seconds after
/// its last sign of life, and by one that stays and says what the machine is. On the thread of the
/// client, which must outlive it.
class Presence
{
public:
    static constexpr int leaseTime = 5; ///< seconds

    Presence(EtcdClient& client, const QByteArray& recordKey, const QByteArray& liveKey);

    /// What the machine says of itself.
    void setRecord(const QByteArray& record);

    /// The client has a connection, or has it no more.
    void begin();
    void end();

private:
    void renew();
    void grant();
    void putRecord();

    EtcdClient& m_client;
    const QByteArray m_recordKey;
    const QByteArray m_liveKey;
    QByteArray m_record;
    QTimer m_timer;
    qint64 m_lease = 0; // 0: none is known
};

} // namespace mivohost
