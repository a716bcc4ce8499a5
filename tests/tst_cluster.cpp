#include "cluster/sharedshortcuts.h"
#include "cluster/showcommands.h"
#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "surface/mainwindow.h"
#include "surface/showbar.h"

#include "support/etcdserver.h"
#include "support/node.h"
#include "support/program.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcutmgr.h>

namespace {

using namespace mivohost;

struct Cluster : ::testing::Test
{
    void SetUp() override
    {
        if (!::EtcdServers::isInstalled()) {
            GTEST_SKIP() << "etcd is not installed";
        }
    }

    /// Both machines, or those with hosts of their own.
    static void connect(const std::vector<std::pair<Node*, QStringList>>& machines)
    {
        for (const auto& [machine, hosts] : machines) {
            machine->start(hosts);
            ASSERT_TRUE(machine->isConnected());
        }
    }
    void connectBoth(const QStringList& hosts) { connect({{&a, hosts}, {&b, hosts}}); }
    testing::AssertionResult bothShow(int undoStep)
    {
        const auto shown = a.shows(undoStep);
        return shown ? b.shows(undoStep) : shown;
    }

    Node a{"a"};
    Node b{"b"};
};

/// Passes on what comes to a server, and on demand nothing of what its watches report.
class Proxy : public QTcpServer
{
public:
    explicit Proxy(const QString& host) : m_port(host.section(':', 1).toUShort())
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, &Proxy::accept);
    }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }

    bool isSilent = false;

private:
    void accept()
    {
        QTcpSocket* client = nextPendingConnection();
        auto* server = new QTcpSocket(client);
        server->connectToHost(QHostAddress::LocalHost, m_port);
        auto isWatch = std::make_shared<bool>(false);
        connect(client, &QTcpSocket::readyRead, server, [=] {
            const QByteArray data = client->readAll();
            *isWatch = *isWatch || data.contains("/v3/watch");
            server->write(data);
        });
        connect(server, &QTcpSocket::readyRead, client, [=] {
            const QByteArray data = server->readAll();
            if (!*isWatch || !isSilent) {
                client->write(data);
            }
        });
        connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
        connect(server, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
    }

    quint16 m_port;
};

} // namespace

TEST_F(Cluster, AChangeReachesTheOtherMachineWhateverHappensToTheServers)
{
    for (const auto& [members, fault, repair] : {std::tuple(1, "", ""),
                                                 {1, "hang 0", "continue 0"},
                                                 {3, "kill 0", ""},
                                                 {3, "kill leader", ""},
                                                 {3, "hang leader", ""},
                                                 {3, "fill 0", ""},
                                                 {3, "kill all", "start all"}}) {
        SCOPED_TRACE(fault);
        ::EtcdServers servers(members);
        connectBoth(servers.hosts());
        a.set(a.undoStep() + 1);
        ASSERT_TRUE(b.shows(a.undoStep()));
        servers.act(fault);
        a.set(a.undoStep() + 1);
        if (*repair != 0) {
            EXPECT_TRUE(a.becomes([&] { return !a.state().isConnected; }));
            EXPECT_EQ(a.state().waiting, 1);
            EXPECT_FALSE(a.state().reason.isEmpty());
            servers.act(repair);
        }
        EXPECT_TRUE(b.shows(a.undoStep()));
        EXPECT_TRUE(a.isConnected());
        EXPECT_TRUE(a.lost.empty() && b.lost.empty());
    }
}

TEST_F(Cluster, OfTwoChangesAtOnceOneHoldsEverywhereAndTheOtherIsToldAndSetAgain)
{
    ::EtcdServers servers(1);
    connectBoth(servers.hosts());
    servers.act("kill 0");
    a.set(80);
    b.set(90);
    a.stop(); // and is ended meanwhile
    a.start(servers.hosts());
    EXPECT_EQ(a.undoStep(), 80);
    servers.act("start 0");
    ASSERT_TRUE(a.isConnected());
    ASSERT_TRUE(b.isConnected());
    ASSERT_EQ(a.lost.size() + b.lost.size(), 1U);
    Node& loser = a.lost.empty() ? b : a;
    const int held = a.lost.empty() ? 80 : 90;
    EXPECT_TRUE(bothShow(held));
    const LostChange lost = loser.lost[0];
    EXPECT_EQ(std::tuple(lost.name, lost.mine, lost.theirs, lost.machine),
              std::tuple("undoStep", 170 - held, held, a.lost.empty() ? "a" : "b"));
    loser.setAgain(lost);
    EXPECT_TRUE(bothShow(170 - held));
}

TEST_F(Cluster, WhatIsCompactedWhileAMachineIsAwayIsReadWhenItComesBack)
{
    ::EtcdServers servers(1);
    Proxy proxy(servers.host(0));
    connect({{&a, servers.hosts()}, {&b, {proxy.host()}}});
    const quint16 port = proxy.serverPort();
    proxy.close();
    for (QTcpSocket* socket : proxy.findChildren<QTcpSocket*>()) {
        socket->abort();
    }
    EXPECT_TRUE(b.becomes([&] { return !b.state().isConnected; }));
    for (int undoStep = 60; undoStep < 70; ++undoStep) {
        a.set(undoStep);
        ASSERT_TRUE(a.becomes([&] { return a.state().waiting == 1; }));
        ASSERT_TRUE(a.isConnected());
    }
    servers.compact();
    LogCapture log;
    ASSERT_TRUE(proxy.listen(QHostAddress::LocalHost, port));
    EXPECT_TRUE(bothShow(69));
    EXPECT_TRUE(b.isConnected());
    EXPECT_NE(log.count("read again"), 0);
}

TEST_F(Cluster, AShowOfTheSameNameOnOtherServersIsJoinedAndNotOverwritten)
{
    ::EtcdServers servers(1);
    ::EtcdServers others(1);
    connect({{&a, servers.hosts()}});
    for (int i = 0; i < 20; ++i) { // what it sees last is newer than all of the other show
        servers.ctl({"put", "filler", "x"});
    }
    a.set(80);
    ASSERT_TRUE(a.isConnected());
    b.start(others.hosts());
    b.set(90);
    ASSERT_TRUE(b.isConnected());
    connect({{&a, others.hosts()}});
    EXPECT_TRUE(bothShow(90));
    EXPECT_TRUE(others.ctl({"get", "/mivo/1/Show-1/show/undoStep"}).contains(":90"));
}

TEST_F(Cluster, AWatchThatStaysSilentIsNoticed)
{
    ::EtcdServers servers(1);
    Proxy proxy(servers.host(0));
    connect({{&a, servers.hosts()}, {&b, {proxy.host(), servers.host(0)}}});
    EXPECT_EQ(b.state().server, proxy.host());
    proxy.isSilent = true;
    a.set(77);
    EXPECT_TRUE(b.shows(77));
    EXPECT_TRUE(b.becomes([&] { return b.state().server == servers.host(0); }));
    b.synchroniser().reconnect(); // as after a sleep: what was connected then is not trusted
    EXPECT_TRUE(b.becomes([&] { return !b.state().isConnected; }));
    EXPECT_TRUE(b.isConnected());
}

TEST_F(Cluster, GarbageIsAnErrorAndAnotherServerIsAsked)
{
    ::EtcdServers servers(1);
    for (const QByteArray& garbage : std::vector<QByteArray>{
             "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\n<html>", "SSH-2.0-x\r\n",
             QByteArray(5000, '\0'),
             "HTTP/1.1 200 OK\r\n\r\n{\"header\":{\"revision\":\"1\"},\"kvs\":[{\"key\":7}]}"}) {
        QTcpServer server;
        ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
        QObject::connect(&server, &QTcpServer::newConnection, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, garbage] {
                socket->readAll();
                socket->write(garbage);
                socket->disconnectFromHost();
            });
        });
        const auto host = QStringLiteral("127.0.0.1:%1").arg(server.serverPort());
        a.start(QStringList{host});
        EXPECT_TRUE(a.becomes([&] { return !a.state().reason.isEmpty(); }));
        EXPECT_FALSE(a.state().isConnected);
        a.start(QStringList{host, servers.host(0)});
        EXPECT_TRUE(a.isConnected());
    }
}

TEST_F(Cluster, ChangesWaitWhileAServerIsFullOrRefusesTheUserAndNoPasswordIsLogged)
{
    LogCapture log;
    ::EtcdServers servers(1, {"--quota-backend-bytes", "1000000"});
    connectBoth(servers.hosts());
    for (int i = 0; i < 20; ++i) {
        servers.ctl({"put", QStringLiteral("filler%1").arg(i), QString(100000, 'x')});
    }
    a.set(88);
    EXPECT_TRUE(a.becomes([&] { return a.state().reason.contains("space"); }));
    EXPECT_EQ(a.state().waiting, 1);
    EXPECT_TRUE(a.state().isConnected) << "it still follows";
    servers.ctl({"del", "filler", "--prefix"});
    servers.compact();
    servers.ctl({"defrag"});
    servers.ctl({"alarm", "disarm"});
    EXPECT_TRUE(b.shows(88));

    EXPECT_FALSE(servers.ctl({"user", "add", "root:right-Secret"}).isEmpty());
    servers.ctl({"user", "grant-role", "root", "root"});
    EXPECT_FALSE(servers.ctl({"auth", "enable"}).isEmpty());
    mivohost::EtcdServers login{servers.hosts(), false, {}, "root", "wrong-Secret"};
    a.start(login);
    a.set(89);
    EXPECT_TRUE(a.becomes([&] { return a.state().reason.contains("password"); }));
    EXPECT_FALSE(a.state().isConnected);
    login.password = "right-Secret";
    a.start(login);
    b.start(login);
    EXPECT_TRUE(a.isConnected());
    EXPECT_TRUE(b.shows(89));
    EXPECT_EQ(log.count("Secret"), 0);
}

TEST_F(Cluster, OnlyAServerWithAValidCertificateIsBelieved)
{
    QTemporaryDir folder;
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(
        "sh",
        {"-c",
         "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=ca -days 2"
         " -keyout ca.key -out ca.pem && openssl req -newkey ec -pkeyopt"
         " ec_paramgen_curve:P-256 -nodes -subj /CN=server -keyout key.pem -out csr.pem &&"
         " echo subjectAltName=IP:127.0.0.1 > ext && for days in 2 -1; do openssl x509 -req -in"
         " csr.pem -CA ca.pem -CAkey ca.key -CAcreateserial -days $days -extfile ext -out"
         " cert$days.pem; done"});
    process.waitForFinished(30000);
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    const QByteArray ca = readFile(folder.filePath("ca.pem"));
    for (const auto& [days, authorities, isValid] :
         {std::tuple("2", ca, true), std::tuple("2", QByteArray(), false),
          std::tuple("2", QByteArray("garbage"), false), std::tuple("-1", ca, false)}) {
        SCOPED_TRACE(days);
        ::EtcdServers servers(1, {"--cert-file", folder.filePath("cert") + days + ".pem",
                                  "--key-file", folder.filePath("key.pem")});
        a.start({servers.hosts(), true, authorities, {}, {}});
        EXPECT_TRUE(a.becomes([&, isValid = isValid] {
            return isValid ? a.state().isConnected : a.state().reason.contains("certificate");
        }));
        EXPECT_EQ(a.state().isConnected, isValid);
    }
}

TEST_F(Cluster, AMachineIsSeenWithItsCardsUntilItStopsAndIsKnownUntilItIsForgotten)
{
    ::EtcdServers servers(1);
    connectBoth(servers.hosts());
    a.synchroniser().setSoundCards({{"x", "Card x", 4}, {"y", "Card y", 2}});
    // The cards of machine a, as pages of b are offered them; -1: it is not known.
    const auto cards = [this] {
        return b.call([](SettingsStore& store) {
            for (const auto& device : store.getSoundCardMappings().devices) {
                if (device.device == "id-a") {
                    EXPECT_EQ(device.caption, "a");
                    return static_cast<int>(device.soundCards.size());
                }
            }
            return -1;
        });
    };
    EXPECT_TRUE(b.becomes([&] { return cards() == 2; }));
    QStringList otherVersions;
    QObject::connect(&b.synchroniser(), &Synchroniser::otherVersion, [&](const Machine& machine) {
        otherVersions.append(machine.name + ' ' + machine.version);
    });
    for (const char* key : {"live", "machine"}) {
        servers.ctl({"put", QStringLiteral("/mivo/1/Show-1/%1/id-c").arg(key),
                     R"({"name":"c","version":"99.1"})"});
    }
    EXPECT_TRUE(b.becomes([&] { return otherVersions == QStringList{"c 99.1"}; }));
    const auto forgetting = [&] {
        QString error;
        forgetMachine("a", b.setupWith({servers.hosts(), false, {}, {}, {}}), error);
        return error;
    };
    EXPECT_TRUE(forgetting().contains("is connected"));
    a.stop();
    EXPECT_TRUE(b.becomes([&] { return cards() == 0; }, 6500));
    EXPECT_EQ(forgetting(), "");
    EXPECT_TRUE(b.becomes([&] { return cards() == -1; }));
    EXPECT_TRUE(forgetting().contains("no machine"));
}

TEST_F(Cluster, KeysOfActionsAreSharedEachForItself)
{
    ::EtcdServers servers(1);
    QDir().mkpath(QFileInfo(mivo::settings::shortCutFilePath()).path());
    mivo::settings::ShortCutMgr manager;
    STLinkShortCutInfo info;
    info.indexShortCutList = {{EnumShortCutType(5), {}, "Ctrl + K"}};
    info.pathShortCutList = {{ShortCutOfPath, "a/b:c", "Ctrl + L"}};
    manager.shortCutInfoSave(info);
    QList<QMap<QString, QStringList>> clashes;
    const auto start = [&] {
        a.start(servers.hosts(), [&] {
            new SharedShortcuts(manager, a.synchroniser());
            QObject::connect(&a.synchroniser(), &Synchroniser::keysClash,
                             [&](const auto& actions) { clashes.append(actions); });
        });
    };
    const auto keys = [&manager] { return manager.linkShortCutInfo().shortCutInfoList; };
    const auto inEtcd = [&servers](const QString& name) {
        return servers.ctl({"get", "--print-value-only", "/mivo/1/Show-1/show/shortcut:" + name});
    };
    start();
    EXPECT_TRUE(a.becomes([&] { return inEtcd("5:").contains("Ctrl + K"); }));
    EXPECT_TRUE(inEtcd("211:a%2Fb%3Ac").contains("Ctrl + L"));
    for (const char* path : {"a%2Fb%3Ac", "n%2Fw"}) {
        servers.ctl({"put", QStringLiteral("/mivo/1/Show-1/show/shortcut:211:") + path,
                     R"({"value":"Ctrl + M","by":"b","name":"b"})"});
    }
    const std::vector<STShortCutItem> expected{{EnumShortCutType(5), {}, "Ctrl + K"},
                                               {ShortCutOfPath, "a/b:c", "Ctrl + M"},
                                               {ShortCutOfPath, "n/w", "Ctrl + M"}};
    EXPECT_TRUE(a.becomes([&] { return keys() == expected; })) << testing::PrintToString(keys());
    EXPECT_TRUE(a.becomes([&] { return !clashes.isEmpty(); }));
    const QStringList both{"shortcut:211:a%2Fb%3Ac", "shortcut:211:n%2Fw"};
    EXPECT_EQ(clashes, (QList<QMap<QString, QStringList>>{{{"Ctrl + M", both}}}));
    info = manager.linkShortCutInfo();
    info.indexShortCutList.clear();
    manager.shortCutInfoSave(info);
    EXPECT_TRUE(a.becomes([&] { return inEtcd("5:").contains(R"("value":"")"); }));
    EXPECT_TRUE(inEtcd("211:n%2Fw").contains(R"("by":"b")"))
        << "what did not change is not written";
    EXPECT_EQ(clashes.size(), 1) << "own changes are no news";
    a.stop();
    info = manager.linkShortCutInfo();
    info.pathShortCutList.pop_back(); // in a run without the show
    manager.shortCutInfoSave(info);
    start();
    EXPECT_TRUE(a.becomes([&] { return keys().size() == 2 && a.lost.size() == 1; }));
    EXPECT_EQ(std::tuple(a.lost[0].mine, a.lost[0].theirs), std::tuple("", "Ctrl + M"));
    for (const char* later : {"Ctrl + P", "Ctrl + Q"}) { // the second one waits a moment
        emit a.synchroniser().shortcutsChanged({{"shortcut:211:n%2Fw", later}});
    }
    a.stop();
    EXPECT_EQ(keys(), (std::vector<STShortCutItem>{{ShortCutOfPath, "a/b:c", "Ctrl + M"},
                                                   {ShortCutOfPath, "n/w", "Ctrl + Q"}}))
        << "taken at the end";
}

TEST_F(Cluster, ProgramsShareAShowAndAMachineIsReplaced)
{
    ::EtcdServers servers(1);
    QTemporaryDir homes[4];
    const QStringList store{"--store", "etcd://" + servers.host(0) + "/Show-1"};
    const auto run = [&](int home, const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(environmentOf(homes[home].path(), "offscreen"));
        process.start(MIVOHOST_PROGRAM, store + arguments);
        process.waitForFinished(60000);
        return QByteArray::number(process.exitCode()) + ' ' + process.readAllStandardOutput();
    };
    QDir(homes[1].path()).mkpath("data/mivo/mivohost");
    {
        auto own = SqlitePersistence::open(homes[1].filePath("data/mivo/mivohost/settings.sqlite"));
        ASSERT_TRUE(own.persistence && own.persistence->write({{"language", "zh_cn"}}));
    }
    Program first(homes[0].path(), store + QStringList{"--settings", "--machine-name", "alpha"});
    Program second(homes[1].path(), store + QStringList{"--machine-name", "beta"});
    ASSERT_TRUE(first.says("settings dialog open"));
    Program third(homes[2].path(), store + QStringList{"--machine-name", "gamma"});
    ASSERT_TRUE(second.says("connected to") && third.says("connected to"));
    first.reachUndoSteps();
    first.press("Up Return");
    for (Program* other : {&second, &third}) {
        EXPECT_TRUE(other->says("setting undoStep = 51 by machine alpha"));
    }
    second.kill();
    EXPECT_EQ(run(3, {"--adopt", "beta"}), "0 settings taken over: 1\n");
    EXPECT_TRUE(run(3, {"--print-settings"}).contains("language=zh_cn\n"));
    EXPECT_EQ(run(3, {"--forget", "nobody"}), "3 ");
    EXPECT_TRUE(QTest::qWaitFor([&] { return run(3, {"--forget", "beta"}) == "0 "; }, 20000));
    EXPECT_TRUE(servers.ctl({"get", "--prefix", "/mivo/1/Show-1/own/"}).isEmpty());
}

TEST_F(Cluster, TheWindowTellsHowItStandsAndSetsAgainWhatWasLost)
{
    const InEnglish english;
    a.start(QStringList{"127.0.0.1:1"});
    ProjectFile project(a.runtime, *a.store);
    Peripherals peripherals(a.runtime, *a.store);
    MainWindow window(a.runtime, *a.store, project, peripherals);
    ShowBar bar(a.synchroniser(), window);
    const auto shows = [&bar](const char* name, const QString& text) {
        return bar.findChild<QLabel*>(name)->text().contains(text);
    };
    EXPECT_TRUE(a.becomes([&] { return shows("showState", "refused"); }));
    const QString today = QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat);
    EXPECT_TRUE(shows("showState", "Show “Show-1”: alone since " + today)) << "for days, perhaps";
    window.show();
    emit a.synchroniser().lost({"undoStep", 80, 70, "b"});
    emit a.synchroniser().lost({"shortcut:211:a%2Fb", "Ctrl + K", "Ctrl + L", "b"});
    EXPECT_TRUE(shows("lostChange", "“Undo steps” is now 70, set by b, which was faster than your "
                                    "change to 80 (2)"));
    bar.findChild<QPushButton*>("setAgain")->click();
    EXPECT_TRUE(a.shows(80));
    EXPECT_TRUE(a.becomes([&] { return shows("showState", ", changes not sent yet: 1 ("); }));
    EXPECT_TRUE(shows("lostChange", "“a/b” is now Ctrl + L"));
    window.switchLanguage("zh_cn");
    EXPECT_FALSE(shows("lostChange", "faster"));
    emit a.synchroniser().keysClash({{"F5", {"shortcut:210:", "shortcut:211:a%2Fb"}}});
    EXPECT_TRUE(a.becomes([&window] {
        return window.messages().messages().back().text.find("F5 (") != std::string::npos;
    }));
    bar.findChild<QPushButton*>("leaveLost")->click();
    EXPECT_FALSE(bar.findChild<QLabel*>("lostChange")->isVisible());
}
