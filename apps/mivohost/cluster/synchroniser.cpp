#include "cluster/synchroniser.h"

#include "base/hostlog.h"
#include "cluster/showlink.h"
#include "cluster/showsetup.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/soundcardmappings.h"

#include <QtCore/QCoreApplication>
#include <QtNetwork/QNetworkInterface>

#include <utility>

namespace mivohost {

using mivo::qutils::post;

namespace {

/// The first address at which others may reach this machine.
QString ownAddress()
{
    const auto addresses = QNetworkInterface::allAddresses();
    for (const QHostAddress& address : addresses) {
        if (address.protocol() == QAbstractSocket::IPv4Protocol && !address.isLoopback()) {
            return address.toString();
        }
    }
    return {};
}

} // namespace

Synchroniser::Synchroniser(RuntimeThread& runtime, SharedSettings& settings,
                           SoundCardMappings& cards, const ShowSetup& setup)
    : m_runtime(runtime), m_settings(settings), m_cards(cards), m_show(setup.show),
      m_machine(setup.machine), m_machines(prefixOf(setup.show)),
      m_link(new ShowLink(setup.servers, prefixOf(setup.show), setup.machine))
{
    m_self.name = setup.name;
    m_self.version = QCoreApplication::applicationVersion();
    m_state.server = setup.servers.hosts.front();
    m_state.since = QDateTime::currentDateTimeUtc();
    SharedSettings::Listener listener;
    listener.send = [this](const std::vector<SentChange>& batch) {
        post(m_link, [link = m_link, batch] { link->send(batch); });
    };
    listener.waiting = [this](int changes) {
        toGui([this, changes] {
            m_state.waiting = changes;
            emit stateChanged();
        });
    };
    listener.lost = [this](const LostChange& change) {
        toGui([this, change] { emit lost(change); });
    };
    listener.replaced = [this](const QStringList& names) {
        toGui([this, names] { emit replaced(names); });
    };
    listener.tooLong = [this](const QString& name) { toGui([this, name] { emit tooLong(name); }); };
    listener.shortcutsChanged = [this](const SharedSettings::Texts& changes) {
        toGui([this, changes] { emit shortcutsChanged(changes); });
    };
    listener.readAgain = [this] { post(m_link, [link = m_link] { link->readAgain(); }); };
    listener.notKept = [this](const QStringList& names, const QString& reason) {
        toGui([this, names, reason] { emit notKept(names, reason); });
    };
    listener.notSet = [this](const QString& name, const QString& reason) {
        toGui([this, name, reason] { emit notSet(name, reason); });
    };
    m_runtime.call([this, &listener] { m_settings.setListener(std::move(listener)); });
    connectLink();
    setSoundCards({});
}

/// The link's signals come on its thread, and are carried to the runtime and to here in their
/// order.
void Synchroniser::connectLink()
{
    const QByteArray prefix = prefixOf(m_show);
    const auto toRuntime = [this](auto work) {
        m_runtime.post(std::move(work), __FILE__, __LINE__, "Synchroniser");
    };
    m_link->moveToThread(&m_thread);
    connect(&m_thread, &QThread::started, m_link, &ShowLink::start);
    connect(&m_thread, &QThread::finished, m_link, &QObject::deleteLater);
    connect(m_link, &ShowLink::pageRead, m_link, [this, toRuntime, prefix](const auto& page) {
        toRuntime([this, page] { m_settings.takePage(page); });
        const SharedSettings::Page ofMachines{Machines::ownOf(prefix, page.values), page.isFirst,
                                              page.isLast};
        toGui([this, ofMachines] { takeMachines(ofMachines, true); });
    });
    connect(m_link, &ShowLink::changed, m_link, [this, toRuntime, prefix](const auto& values) {
        toRuntime([this, values] { m_settings.takeChanges(values); });
        const SharedSettings::Page ofMachines{Machines::ownOf(prefix, values)};
        if (!ofMachines.values.empty()) {
            toGui([this, ofMachines] { takeMachines(ofMachines, false); });
        }
    });
    connect(m_link, &ShowLink::answered, m_link,
            [this, toRuntime](const auto& batch, const auto& answer) {
                toRuntime([this, batch, answer] { m_settings.takeAnswer(batch, answer); });
            });
    connect(m_link, &ShowLink::stateChanged, m_link,
            [this, toRuntime](bool isConnected, const QString& server, const QString& reason) {
                hostLog()->info("show {}: {} {}{}{}", m_show.toStdString(),
                                isConnected ? "connected to" : "not connected to",
                                server.toStdString(), reason.isEmpty() ? "" : ": ",
                                reason.toStdString());
                // By the runtime: what it has read before counts as waiting already.
                toRuntime([this, isConnected, server, reason] {
                    m_settings.setConnected(isConnected);
                    toGui([this, isConnected, server, reason] {
                        if (m_state.isConnected != isConnected) {
                            m_state.since = QDateTime::currentDateTimeUtc();
                        }
                        m_state.isConnected = isConnected;
                        m_state.server = server;
                        m_state.reason = reason;
                        if (isConnected) {
                            describe();
                        }
                        emit stateChanged();
                    });
                });
            });
}

Synchroniser::~Synchroniser()
{
    // From now on nothing is handed to the link, and what is set waits in the outbox.
    m_runtime.call([this] { m_settings.setListener({}); });
    QCoreApplication::sendPostedEvents(&m_toGui); // keys that the store has already taken over
    m_thread.quit();
    m_thread.wait();
    m_runtime.call([] {}); // what the link has posted is done
}

void Synchroniser::reconnect()
{
    post(m_link, [link = m_link] { link->reconnect(); });
}

QByteArray Synchroniser::prefixOf(const QString& show)
{
    return "/mivo/1/" + show.toUtf8() + '/';
}

void Synchroniser::setSoundCards(const std::vector<mivo::settings::STSoundCardInfo>& cards)
{
    m_self.cards = cards;
    describe();
}

void Synchroniser::describe()
{
    m_self.address = ownAddress(); // which changes while the program runs
    post(m_link, [link = m_link, record = m_self.toJson()] { link->describe(record); });
}

void Synchroniser::takeMachines(const SharedSettings::Page& page, bool isAll)
{
    if (isAll && page.isFirst) {
        m_machines.beginReading();
    }
    m_machines.take(page.values);
    if (isAll && page.isLast) {
        m_machines.endReading();
    }
    if (!m_machines.isReading()) {
        tellCards(std::exchange(m_told, m_machines.all()));
        emit machinesChanged();
    }
}

/// Has the mappings know the other machines, and the operator those of another version.
void Synchroniser::tellCards(const std::map<QString, Machine>& before)
{
    const auto toCards = [this](auto tell) {
        m_runtime.post([this, tell] { tell(m_cards); }, __FILE__, __LINE__, "Synchroniser");
    };
    for (const auto& [id, machine] : m_told) {
        const auto old = before.find(id);
        if (id == m_machine || (old != before.end() && old->second == machine)) {
            continue;
        }
        if (machine.isConnected && machine.version != m_self.version
            && (old == before.end() || !old->second.isConnected
                || old->second.version != machine.version)) {
            emit otherVersion(machine);
        }
        toCards([device = id.toStdString(), caption = machine.name.toStdString(),
                 cards = machine.isConnected ? machine.cards : decltype(machine.cards)()](
                    SoundCardMappings& mappings) {
            mappings.setDeviceSoundCards(device, caption, cards);
        });
    }
    for (const auto& [id, machine] : before) {
        if (m_told.count(id) == 0 && id != m_machine) {
            toCards([device = id.toStdString()](SoundCardMappings& mappings) {
                mappings.removeDevice(device);
            });
        }
    }
}

SharedSettings::Texts Synchroniser::shortcuts()
{
    return m_runtime.call([this] { return m_settings.shortcuts(); });
}

void Synchroniser::shareShortcuts(const SharedSettings::Texts& changes, bool isFirst)
{
    if (!changes.isEmpty()) {
        m_runtime.post([this, changes, isFirst] { m_settings.shareShortcuts(changes, isFirst); },
                       __FILE__, __LINE__, "Synchroniser");
    }
}

void Synchroniser::setAgain(const LostChange& change)
{
    m_runtime.post([this, change] { m_settings.setAgain(change); }, __FILE__, __LINE__,
                   "Synchroniser");
}

} // namespace mivohost
