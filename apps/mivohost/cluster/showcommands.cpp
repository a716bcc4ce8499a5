#include "cluster/showcommands.h"

#include "cluster/etcdclient.h"
#include "cluster/machines.h"
#include "cluster/sharedsettings.h"
#include "cluster/showsetup.h"
#include "cluster/synchroniser.h"
#include "mivohostkit/runtimethread.h"

#include <QtCore/QEventLoop>

#include <cstdio>
#include <optional>
#include <utility>

namespace mivohost {

namespace {

using Status = etcd::Answer::Status;

/// The connection of one command.
class Command
{
public:
    Command(const ShowSetup& setup, QString& error)
        : m_prefix(Synchroniser::prefixOf(setup.show)), m_client(setup.servers), m_error(error)
    {}

    /// What etcd has below `key`, which ends with '/'.
    std::vector<etcd::KeyValue> read(const QByteArray& key)
    {
        return ask(etcd::range(key, etcd::endOf(key), static_cast<int>(Machines::most) * 2, 0));
    }
    void remove(const QByteArray& key) { ask(etcd::remove(key, {})); }
    void removeBelow(const QByteArray& key) { ask(etcd::remove(key, etcd::endOf(key))); }

    QByteArray ownOf(const QString& id) const { return m_prefix + "own/" + id.toUtf8() + '/'; }
    QByteArray recordOf(const QString& id) const { return Machines::recordKey(m_prefix, id); }

    /// The id and whether it is connected.
    std::optional<std::pair<QString, bool>> find(const QString& nameOrId)
    {
        Machines machines(m_prefix);
        machines.take(read(recordOf({})));
        machines.take(read(Machines::liveKey(m_prefix, {})));
        QStringList ids;
        for (const auto& [id, machine] : machines.all()) {
            if (id == nameOrId || machine.name == nameOrId) {
                ids.append(id);
            }
        }
        if (m_error.isEmpty() && ids.isEmpty()) {
            m_error = QStringLiteral("the show has no machine %1").arg(nameOrId);
        } else if (ids.size() > 1) {
            m_error = QStringLiteral("several machines have this name; give the id of one: %1")
                          .arg(ids.join(QStringLiteral(", ")));
        }
        return m_error.isEmpty()
                   ? std::optional(std::pair(ids[0], machines.all().at(ids[0]).isConnected))
                   : std::nullopt;
    }

private:
    std::vector<etcd::KeyValue> ask(const etcd::Request& request)
    {
        etcd::Answer result;
        QString server;
        for (int attempt = 0; m_error.isEmpty() && attempt < m_client.serverCount(); ++attempt) {
            server = m_client.server();
            QEventLoop loop;
            const auto done = [&](const etcd::Answer& answer) {
                result = answer;
                loop.quit();
            };
            m_client.signIn([&](const etcd::Answer& answer) {
                answer.status == Status::ok ? m_client.ask(request, done) : done(answer);
            });
            loop.exec();
            if (result.status == Status::ok || result.status == Status::refused) {
                break;
            }
            m_client.nextServer();
        }
        if (m_error.isEmpty() && !result.error.isEmpty()) {
            m_error = QStringLiteral("%1: %2").arg(server, result.error);
        }
        return result.values;
    }

    const QByteArray m_prefix;
    EtcdClient m_client;
    QString& m_error;
};

} // namespace

void adoptMachine(const QString& machine, const ShowSetup& setup, RuntimeThread& runtime,
                  std::unique_ptr<SharedSettings> settings, QString& error)
{
    Command command(setup, error);
    const auto found = command.find(machine);
    const auto values =
        found ? command.read(command.ownOf(found->first)) : std::vector<etcd::KeyValue>();
    const int count = runtime.call([&] {
        return std::exchange(settings, nullptr)->adopt(values, error); // and closes the file
    });
    if (error.isEmpty()) {
        std::printf("settings taken over: %d\n", count);
    }
}

void forgetMachine(const QString& machine, const ShowSetup& setup, QString& error)
{
    Command command(setup, error);
    const auto found = command.find(machine);
    if (found && found->second) {
        error = QStringLiteral("%1 is connected; end its mivohost first").arg(machine);
    } else if (found) {
        command.removeBelow(command.ownOf(found->first));
        command.remove(command.recordOf(found->first));
    }
}

} // namespace mivohost
