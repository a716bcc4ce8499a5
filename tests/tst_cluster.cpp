#include "cluster/sharedshortcuts.h"
#include "cluster/showcommands.h"
#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "surface/mainwindow.h"
#include "surface/showbar.h"

#include "support/etcdserver.h"
#include "support/fulldisk.h"
#include "support/node.h"
#include "support/program.h"
#include "support/proxy.h"

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

} // namespace

TEST_F(Cluster, AChangeReachesTheOtherMachineWhateverHappensToTheServers)
{
    for (const auto& [members, fault, repair] : {std::tuple(1, "hang 0", "continue 0"),
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
            EXPECT_TRUE(a.isToldInChinese());
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
        EXPECT_TRUE(a.becomes([&] { return a.isToldInChinese(); }));
        EXPECT_FALSE(a.state().isConnected);
        a.start(QStringList{host, servers.host(0)});
        EXPECT_TRUE(a.isConnected());
    }
}

TEST_F(Cluster, WhatOthersPutAmongTheKeysOfAShowLocksNoMachineOut)
{
    LogCapture log;
    ::EtcdServers servers(1);
    connect({{&a, servers.hosts()}});
    a.stop();
    EtcdClient client({servers.hosts(), false, {}, {}, {}});
    const auto put = [&client](const QByteArray& name, int keys, int size) {
        std::vector<etcd::Write> writes;
        for (int i = 0; i < keys; ++i) {
            writes.push_back(
                {"/mivo/1/Show-1/" + name + QByteArray::number(i), QByteArray(size, 'x'), 0});
        }
        QEventLoop loop;
        client.ask(etcd::writeAll(writes), [&](const etcd::Answer& answer) {
            EXPECT_TRUE(answer.isWritten) << name.constData();
            loop.quit();
        });
        loop.exec();
    };
    for (char name = 'a'; name < 'g'; ++name) { // a whole page before the show's own keys
        put(QByteArray(1, name), 100, 1);
    }
    for (int i = 0; i < 40; ++i) { // together more than an answer may have
        put("long" + QByteArray::number(i) + '-', 1, 1400000);
    }
    connect({{&a, servers.hosts()}});
    EXPECT_EQ(log.count("another show"), 0);
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
    EXPECT_TRUE(a.becomes([&] { return a.isToldInChinese("space"); }));
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
    EXPECT_TRUE(a.becomes([&] { return a.isToldInChinese("password"); }));
    EXPECT_FALSE(a.state().isConnected);
    login.password = "right-Secret";
    a.start(login);
    b.start(login);
    EXPECT_TRUE(a.isConnected());
    EXPECT_TRUE(b.shows(89));
    EXPECT_EQ(log.count("Secret"), 0);
}

TEST_F(Cluster, WhatTheOwnDiskDoesNotTakeIsToldOnceAndReadAgainUntilItDoes)
{
    ::EtcdServers servers(1);
    QTemporaryDir folder;
    Node full("full", folder.path());
    connect({{&full, servers.hosts()}});
    LogCapture log;
    {
        const FullDisk disk;
        servers.ctl({"put", "/mivo/1/Show-1/show/canvasColor",
                     R"({"value":"#123456","by":"b","name":"b"})"});
        EXPECT_TRUE(full.becomes([&] {
            return full.call([](auto& store) { return store.getCanvasColor() == "#123456"; });
        }));
        QTest::qWait(6000); // it is read once more
    }
    const QString file = full.setupWith({}).path(QDir(folder.path()));
    EXPECT_TRUE(full.becomes([&] { return readFile(file).contains("#123456"); }));
    EXPECT_EQ(log.count("what is shared could not be saved: "), 1);
    EXPECT_EQ(log.count("not connected"), 0) << "it is no fault of the server";
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
            return isValid ? a.state().isConnected : a.isToldInChinese("certificate");
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
    // The first two are no machine's: not that of no id, which is each one itself, and not a's.
    for (const char* key : {"machine/", "machine/x/id-a", "live/id-c", "machine/id-c"}) {
        servers.ctl(
            {"put", QStringLiteral("/mivo/1/Show-1/") + key, R"({"name":"c","version":"99.1"})"});
    }
    servers.ctl({"del", "/mivo/1/Show-1/machine/x/id-a"});
    EXPECT_TRUE(b.becomes([&] { return b.synchroniser().machines().count("id-c") == 1; }));
    EXPECT_EQ(otherVersions, QStringList{"c 99.1"});
    EXPECT_EQ(b.synchroniser().machines().size(), 3U);
    EXPECT_EQ(cards(), 2);
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
    QList<QMap<QString, QString>> others;
    const auto start = [&] {
        a.start(servers.hosts(), [&] {
            new SharedShortcuts(manager, a.synchroniser());
            QObject::connect(&a.synchroniser(), &Synchroniser::keysClash,
                             [&](const auto& actions) { clashes.append(actions); });
            QObject::connect(&a.synchroniser(), &Synchroniser::otherKeys,
                             [&](const auto& inFile) { others.append(inFile); });
        });
    };
    const auto keys = [&manager] { return manager.linkShortCutInfo().shortCutInfoList; };
    const auto inEtcd = [&servers](const QString& name) {
        return servers.ctl({"get", "--print-value-only", "/mivo/1/Show-1/show/shortcut:" + name});
    };
    start();
    EXPECT_TRUE(a.becomes([&] { return inEtcd("5:").contains("Ctrl + K"); }));
    EXPECT_TRUE(inEtcd("211:a%2Fb%3Ac").contains("Ctrl + L"));
    for (const char* name : {"05:", "211:n%2fw", "211:a%2Fb%3Ac", "211:n%2Fw"}) { // two name none
        servers.ctl({"put", QStringLiteral("/mivo/1/Show-1/show/shortcut:") + name,
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
    info.pathShortCutList[0].shortCutStr = "Ctrl + N";
    manager.shortCutInfoSave(info);
    start();
    EXPECT_TRUE(a.becomes([&] { return keys().size() == 2 && !others.isEmpty(); }));
    EXPECT_EQ(others, (QList<QMap<QString, QString>>{{{both[0], "Ctrl + N"}, {both[1], ""}}}));
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
    const auto tells = [&](const char* text) {
        return a.becomes([&] {
            return window.messages().messages().back().text.find(text) != std::string::npos;
        });
    };
    emit a.synchroniser().keysClash({{"F5", {"shortcut:210:", "shortcut:211:a%2Fb"}}});
    EXPECT_TRUE(tells("F5 ("));
    emit a.synchroniser().otherKeys({{"shortcut:211:a%2Fb", ""}, {"shortcut:211:c", "F6"}});
    EXPECT_TRUE(tells("a/b (–)、c (F6)"));
    emit a.synchroniser().notKept(
        {"shortcut:211:c"},
        "database or disk is full (unless the show takes the change, which was sent to it)");
    EXPECT_TRUE(tells("c: 磁盘空间不足 (更改已发送给演出"));
    const QString longest(100000, 'x');
    emit a.synchroniser().keysClash({{longest, {"shortcut:210:", "shortcut:211:" + longest}}});
    EXPECT_TRUE(a.becomes([&window] {
        const std::string& text = window.messages().messages().back().text;
        return text.find("xxx… (") != std::string::npos && text.size() < 1000;
    }));
    bar.findChild<QPushButton*>("leaveLost")->click();
    EXPECT_FALSE(bar.findChild<QLabel*>("lostChange")->isVisible());
}
