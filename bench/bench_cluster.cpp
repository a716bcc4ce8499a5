// A setter on one machine until the control on another one shows it, through a real etcd, beside a
// bare put and watch; and until 1, 10 and 100 machines have it: one change after the other, each
// when all are idle again. Then the start of a machine in a show with 10,000 keys of actions.
// Without etcd installed nothing is measured.

#include "cluster/showsetup.h"
#include "cluster/synchroniser.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"

#include <mivosettingswidgets/undosettingbox.h>
#include <mivowidgets/spineditbox.h>

#include <benchmark/benchmark.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace mivohost;

bool waitFor(const std::function<bool()>& isSo)
{
    QTimer tick; // not processEvents() with a time, which does not sleep
    tick.start(100);
    QElapsedTimer elapsed;
    elapsed.start();
    while (!isSo()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (elapsed.elapsed() > 60000) {
            return false;
        }
    }
    return true;
}

/// Bytes of this process that are in memory.
double memory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').value(1).toDouble() * 4096;
}

/// For so long, in seconds, events are handled.
void idle(double seconds)
{
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000), &loop, &QEventLoop::quit);
    loop.exec();
}

/// One etcd for all measurements.
class Server
{
public:
    Server()
    {
        QTcpServer free;
        free.listen(QHostAddress::LocalHost);
        const auto peer = std::make_unique<QTcpServer>();
        peer->listen(QHostAddress::LocalHost);
        host = QStringLiteral("127.0.0.1:%1").arg(free.serverPort());
        const QString peerUrl = QStringLiteral("http://127.0.0.1:%1").arg(peer->serverPort());
        free.close();
        peer->close();
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start("etcd", {"--data-dir", m_folder.path(), "--listen-client-urls",
                                 "http://" + host, "--advertise-client-urls", "http://" + host,
                                 "--listen-peer-urls", peerUrl, "--initial-advertise-peer-urls",
                                 peerUrl, "--initial-cluster", "default=" + peerUrl});
        isThere = m_process.waitForStarted();
        m_process.closeReadChannel(QProcess::StandardOutput);
    }
    ~Server()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    static Server& instance()
    {
        static Server server;
        return server;
    }

    /// How many requests it has got, a watch among them once.
    double requests()
    {
        QTcpSocket socket;
        socket.connectToHost(host.section(':', 0, 0), host.section(':', 1).toUShort());
        socket.write("GET /metrics HTTP/1.0\r\n\r\n");
        while (socket.waitForReadyRead(5000)) {
        }
        double count = 0;
        for (const QByteArray& line : socket.readAll().split('\n')) {
            if (line.startsWith("grpc_server_started_total")) {
                count += line.mid(line.lastIndexOf(' ')).toDouble();
            }
        }
        return count;
    }

    bool isThere = false;
    QString host;

private:
    QTemporaryDir m_folder;
    QProcess m_process;
};

/// A machine of the show.
class Node
{
public:
    Node(int number, const QString& show)
    {
        const QString name = QStringLiteral("machine-%1").arg(number);
        const ShowSetup setup{show, {{Server::instance().host}, false, {}, {}, {}}, name, name};
        runtime.call([&] {
            QString error;
            auto opened = SqlitePersistence::open(setup.path(QDir(m_folder.path())));
            shared = setup.share(std::move(opened.persistence), {}, error);
            m_settings = shared.get();
            store = std::make_unique<SettingsStore>(std::move(shared));
        });
        synchroniser =
            std::make_unique<Synchroniser>(runtime, *m_settings, store->soundCards(), setup);
    }
    ~Node()
    {
        synchroniser.reset();
        runtime.call([this] { store.reset(); });
    }

    bool connect()
    {
        synchroniser->start();
        return waitFor([this] {
            return synchroniser->state().isConnected && synchroniser->state().waiting == 0;
        });
    }
    int undoStep()
    {
        return runtime.call([this] { return store->getUndoStep(); });
    }

    RuntimeThread runtime;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<Synchroniser> synchroniser;

private:
    std::unique_ptr<SharedSettings> shared;
    QTemporaryDir m_folder;
    SharedSettings* m_settings = nullptr;
};

constexpr double pause = 0.03; // s between two changes

void floor(benchmark::State& state)
{
    if (!Server::instance().isThere) {
        state.SkipWithError("etcd is not installed");
        return;
    }
    const EtcdServers servers{{Server::instance().host}, false, {}, {}, {}};
    EtcdClient writer(servers);
    std::vector<std::unique_ptr<EtcdClient>> watchers;
    const int count = static_cast<int>(state.range(0));
    int started = 0;
    int seen = 0;
    bool isAnswered = false;
    waitFor([&] { // the server is there
        writer.ask(etcd::put("/bench/a", "0"), [&](const etcd::Answer& answer) {
            isAnswered = isAnswered || answer.status == etcd::Answer::Status::ok;
        });
        idle(0.1);
        return isAnswered;
    });
    for (int i = 0; i < count; ++i) {
        watchers.push_back(std::make_unique<EtcdClient>(servers));
        QObject::connect(watchers.back().get(), &EtcdClient::reported,
                         [&](const etcd::Report& report) {
                             started += report.isStart ? 1 : 0;
                             seen += static_cast<int>(report.values.size());
                         });
        watchers.back()->watch("/bench/", 0);
    }
    waitFor([&] { return started == count; });
    idle(pause);
    int value = 0;
    for (auto _ : state) {
        seen = 0;
        isAnswered = false;
        QElapsedTimer elapsed;
        elapsed.start();
        writer.ask(etcd::put("/bench/a", QByteArray::number(++value)),
                   [&](const auto&) { isAnswered = true; });
        if (!waitFor([&] { return seen >= count; })) {
            state.SkipWithError("the watch is silent");
        }
        state.SetIterationTime(static_cast<double>(elapsed.nsecsElapsed()) / 1e9);
        waitFor([&] { return isAnswered; });
        idle(pause);
    }
}

void ours(benchmark::State& state)
{
    if (!Server::instance().isThere) {
        state.SkipWithError("etcd is not installed");
        return;
    }
    const QString show = QStringLiteral("bench%1").arg(state.range(0));
    std::atomic<int> left{0}; // followers that have not got the value
    const double before = memory();
    Node writer(0, show);
    bool isReady = writer.connect();
    std::vector<std::unique_ptr<Node>> followers;
    for (int i = 1; i <= static_cast<int>(state.range(0)); ++i) {
        followers.push_back(std::make_unique<Node>(i, show));
        isReady = isReady && followers.back()->connect();
    }
    if (!isReady) {
        state.SkipWithError("no connection");
        return;
    }
    mivo::settings::UndoSettingBox page;
    page.setZRRuntime(&followers.front()->runtime);
    page.setSettings(followers.front()->store.get());
    const auto* edit = page.findChild<mivo::widgets::SpinEditBox*>();
    for (const auto& follower : followers) {
        follower->runtime.call([&] {
            follower->store->undoStepChanged.connect([&left, &page](int) {
                if (--left == 0) { // and the GUI thread is to look
                    QMetaObject::invokeMethod(
                        &page, [] {}, Qt::QueuedConnection);
                }
            });
        });
    }
    const double nodes = static_cast<double>(followers.size() + 1);
    state.counters["memory_each"] = (memory() - before) / nodes;
    double requests = Server::instance().requests();
    idle(5);
    state.counters["idle_requests_each_per_s"] =
        (Server::instance().requests() - requests) / nodes / 5;
    requests = Server::instance().requests();
    int value = 0;
    for (auto _ : state) {
        value = 1 + value % 499;
        left = static_cast<int>(followers.size());
        QElapsedTimer elapsed;
        elapsed.start();
        // Not call(): the other machine's GUI thread does not wait for this setter's return.
        writer.runtime.post([&] { writer.store->setUndoStep(value); }, __FILE__, __LINE__, "");
        if (!waitFor([&] { return left == 0 && static_cast<int>(edit->value()) == value; })) {
            state.SkipWithError("it did not arrive");
        }
        state.SetIterationTime(static_cast<double>(elapsed.nsecsElapsed()) / 1e9);
        idle(pause);
        waitFor([&] { return writer.synchroniser->state().waiting == 0; });
        for (const auto& follower : followers) {
            follower->runtime.call([] {}); // it has kept the change
        }
    }
    state.counters["requests_per_change"] = benchmark::Counter(
        Server::instance().requests() - requests, benchmark::Counter::kAvgIterations);
}

void startWithKeys(benchmark::State& state)
{
    if (!Server::instance().isThere) {
        state.SkipWithError("etcd is not installed");
        return;
    }
    SharedSettings::Texts keys;
    for (int i = 0; i < static_cast<int>(state.range(0)); ++i) {
        keys.insert(QStringLiteral("shortcut:211:action%1").arg(i), QStringLiteral("Ctrl + K"));
    }
    Node first(0, QStringLiteral("benchkeys"));
    first.synchroniser->shareShortcuts(keys, true);
    if (!first.connect()) {
        state.SkipWithError("the keys did not get to etcd");
        return;
    }
    int number = 0;
    for (auto _ : state) {
        Node other(++number, QStringLiteral("benchkeys"));
        if (!other.connect()
            || !waitFor([&] { return other.synchroniser->shortcuts().size() == keys.size(); })) {
            state.SkipWithError("the keys did not arrive");
        }
    }
}

BENCHMARK(floor)->Name("cluster/floor")->Arg(1)->Arg(10)->Arg(100)->UseManualTime()->Iterations(20);
BENCHMARK(ours)->Name("cluster/ours")->Arg(1)->Arg(10)->Arg(100)->UseManualTime()->Iterations(20);
BENCHMARK(startWithKeys)
    ->Name("cluster/start")
    ->Arg(10000)
    ->UseRealTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
