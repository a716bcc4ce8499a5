#include "cluster/sharedsettings.h"

#include "cluster/showaddress.h"
#include "cluster/showsetup.h"

#include "support/fulldisk.h"
#include "support/test.h"

namespace sharedsettingstest {

using namespace mivohost;
using etcd::KeyValue;
using Status = etcd::Answer::Status;

QByteArray json(const QByteArray& value, const QByteArray& machine = "b")
{
    return "{\"by\":\"" + machine + "\",\"name\":\"Machine " + machine + "\",\"value\":" + value
           + '}';
}

KeyValue there(const QByteArray& name, const QByteArray& value, qint64 revision,
               const QByteArray& machine = "b")
{
    return {"/s/show/" + name, json(value, machine), revision};
}

etcd::Answer written(qint64 revision)
{
    etcd::Answer answer;
    answer.revision = revision;
    answer.isWritten = true;
    return answer;
}

/// A machine whose network is the test.
struct Shared : ::testing::Test
{
    Shared() { start(); }

    void startAnew()
    {
        settings.reset();
        QFile::remove(folder.filePath("show.sqlite"));
        start();
        told.clear();
        shown.clear();
    }
    void start()
    {
        settings.reset(); // whose file is opened again
        auto opened = SqlitePersistence::open(folder.filePath("show.sqlite"));
        ASSERT_TRUE(opened.persistence);
        ASSERT_TRUE(opened.persistence->keepOutbox());
        const SharedSettings::Identity identity{"/s/", "a", "Machine a", {"language"}, {}, known};
        settings = std::make_unique<SharedSettings>(std::move(opened.persistence), identity);
        settings->watch([this](const QString& name, const QVariant& value) {
            shown.append(name + '=' + value.toString());
        });
        SharedSettings::Listener listener;
        listener.send = [this](const auto& batch) { sent = batch; };
        listener.waiting = [this](int changes) { waiting = changes; };
        listener.lost = [this](const LostChange& change) {
            told.append("lost " + change.name + ": " + change.mine.toString() + ", "
                        + change.theirs.toString() + " by " + change.machine);
        };
        listener.replaced = [this](const QStringList& names) {
            told.append("replaced " + names.join(','));
        };
        listener.tooLong = [this](const QString& name) { told.append("too long " + name); };
        listener.readAgain = [this] { ++readings; };
        listener.notKept = [this](const auto& names, auto) {
            told += "not kept " + names.join(',');
        };
        listener.notSet = [this](const QString& name, auto) { told.append("not set " + name); };
        settings->setListener(listener);
    }

    /// What is on its way, each as "name=value@revision", or with the whole key of another one.
    QStringList takeSent()
    {
        QStringList texts;
        for (const auto& change : std::exchange(sent, {})) {
            const auto value = QJsonDocument::fromJson(change.write.value).object().value("value");
            texts.append(QByteArray(change.write.key).replace("/s/show/", "") + '='
                         + value.toVariant().toString() + '@'
                         + QString::number(change.write.revision));
        }
        return texts;
    }
    QString kept(const QString& name) const { return settings->loadAll().value(name).toString(); }

    const QSet<QString> known{"language",   "undoStep",    "mfps",       "efps",
                              "fadeInTime", "fadeOutTime", "canvasColor"};
    QTemporaryDir folder;
    std::unique_ptr<SharedSettings> settings;
    std::vector<SentChange> sent;
    int waiting = -1;
    int readings = 0; // that are due
    QStringList told;
    QStringList shown;
};

TEST_F(Shared, AChangeWaitsAlsoThroughARestartUntilItIsInEtcd)
{
    EXPECT_TRUE(settings->write({{"undoStep", 80}}));
    EXPECT_TRUE(settings->write({{"language", "zh_cn"}}));
    EXPECT_TRUE(settings->write({{"fadeInTime", 0.1 + 0.2}}));
    EXPECT_TRUE(settings->write({{"undoStep", 81}}));
    EXPECT_TRUE(sent.empty()) << "nobody is there";
    start();
    EXPECT_EQ(waiting, 3);
    settings->setConnected(true);
    const auto batch = sent;
    EXPECT_EQ(takeSent(), (QStringList{"/s/own/a/language=zh_cn@0",
                                       "fadeInTime=0.30000000000000004@0", "undoStep=81@0"}))
        << "in the order of their last changes, whole, and with the machine's own apart";
    EXPECT_TRUE(settings->write({{"undoStep", 82}}));
    EXPECT_TRUE(sent.empty()) << "one after the other";
    settings->takeAnswer(batch, written(7));
    EXPECT_EQ(waiting, 1);
    EXPECT_EQ(takeSent(), QStringList{"undoStep=82@7"});
    start();
    settings->setConnected(true);
    const auto again = sent;
    EXPECT_EQ(takeSent(), QStringList{"undoStep=82@7"}) << "it was not answered";
    settings->takeAnswer(again, written(8));
    start();
    EXPECT_EQ(waiting, 0);
}

TEST_F(Shared, WhatEtcdHasInsteadOfAChangeDecidesWhatBecomesOfIt)
{
    // What is there instead of 80, which was sent, and by whom; what was set here meanwhile, or 0;
    // what is held then, what is told, and what is sent.
    for (const auto& [value, machine, later, held, tells, sends] :
         {std::tuple("70", "b", 0, "70", "lost undoStep: 80, 70 by Machine b", ""),
          {"70", "b", 90, "70", "lost undoStep: 90, 70 by Machine b", ""},
          {"80", "b", 0, "80", "", ""}, // the same
          {"80", "a", 0, "80", "", ""}, // its own, whose answer was lost
          {"80", "a", 90, "90", "", "undoStep=90@9"},
          {"60", "a", 0, "80", "", "undoStep=80@9"},   // an older one of its own
          {"[", "b", 0, "80", "", "undoStep=80@9"}}) { // no value
        SCOPED_TRACE(::testing::Message() << value << machine << later);
        startAnew();
        settings->setConnected(true);
        settings->write({{"undoStep", 80}});
        const auto batch = std::exchange(sent, {});
        if (later != 0) {
            settings->write({{"undoStep", later}});
        }
        etcd::Answer answer;
        answer.values = {there("undoStep", value, 9, machine)};
        settings->takeAnswer(batch, answer);
        EXPECT_EQ(kept("undoStep"), held);
        EXPECT_EQ(told.join(';'), tells);
        EXPECT_EQ(takeSent().join(';'), sends);
        EXPECT_EQ(shown.join(';'), told.isEmpty() ? "" : "undoStep=70");
        if (!told.isEmpty()) { // it is set again on top of the one that was faster
            settings->setAgain({"undoStep", 85, 70, "Machine b"});
            EXPECT_EQ(shown.last(), "undoStep=85");
            EXPECT_EQ(takeSent(), QStringList{"undoStep=85@9"});
        }
    }
}

TEST_F(Shared, WhatOthersChangeIsTakenOverOnceAndInOrder)
{
    const KeyValue deleted{"/s/show/undoStep", {}, 15, true};
    settings->takeChanges({there("undoStep", "70", 9),
                           there("undoStep", "71", 10),
                           there("undoStep", "70", 9), // once more, as after a break
                           there("of a later version", "\"x\"", 11),
                           {"/s/own/b/language", json("\"en\""), 12},
                           {"/s/own/a/language", json("\"en\""), 12},
                           {"/s/pulse", "", 13},
                           {"/other/show/undoStep", json("5"), 13}});
    EXPECT_EQ(shown,
              (QStringList{"undoStep=70", "undoStep=71", "of a later version=x", "language=en"}));
    start();
    EXPECT_EQ(kept("of a later version"), "x");
    settings->setConnected(true);
    settings->write({{"undoStep", 80}});
    const auto batch = sent;
    EXPECT_EQ(takeSent(), QStringList{"undoStep=80@10"});
    shown.clear();
    settings->takeChanges({there("undoStep", "80", 13, "a"), there("undoStep", "75", 14)});
    EXPECT_TRUE(shown.isEmpty()) << "the answer has not come yet";
    settings->takeAnswer(batch, written(13));
    EXPECT_EQ(shown, QStringList{"undoStep=75"});
    settings->takeChanges({deleted, {"/s/show/of a later version", {}, 15, true}});
    EXPECT_EQ(takeSent(), QStringList{"undoStep=75@0"}) << "the show gets it again";
    EXPECT_TRUE(told.isEmpty()) << told.join(';');
}

TEST_F(Shared, AllThatEtcdHasIsComparedWithAllThatIsHere)
{
    // As a machine that had settings before it joined.
    {
        settings.reset();
        auto opened = SqlitePersistence::open(folder.filePath("show.sqlite"));
        for (const auto& [name, value] :
             {std::pair("undoStep", 60), std::pair("mfps", 1), std::pair("efps", 1),
              std::pair("of a later version", 1)}) {
            ASSERT_TRUE(opened.persistence->write({{name, value}}));
        }
    }
    start();
    for (int i = 0; i < SharedSettings::mostInOneBatch; ++i) { // set by a later version before
        settings->write({{QStringLiteral("later %1").arg(i), 1}});
    }
    settings->write({{"fadeInTime", 0.25}});
    settings->takePage({{there("efps", "1", 3), there("fadeInTime", "0.75", 4)}, true, false});
    settings->takePage(
        {{there("undoStep", "70", 5), there("fadeOutTime", "0.75", 6), there("later", "2", 7)},
         false,
         true});
    EXPECT_EQ(shown, (QStringList{"undoStep=70", "fadeOutTime=0.75", "later=2"}));
    EXPECT_EQ(told, QStringList{"replaced undoStep"});
    settings->setConnected(true);
    const auto batch = sent;
    EXPECT_EQ(takeSent(), (QStringList{"fadeInTime=0.25@0", "mfps=1@0"}));
    settings->takeAnswer({batch.begin() + 1, batch.end()}, written(30));
    // etcd was put back: it has less, and older values, than the machine saw there.
    shown.clear();
    settings->setConnected(false);
    settings->takePage({{there("undoStep", "50", 2), there("efps", "1", 2),
                         there("fadeOutTime", "0.5", 6), there("later", "1", 2)}});
    settings->setConnected(true);
    EXPECT_TRUE(shown.isEmpty());
    QStringList again = takeSent();
    again.sort();
    EXPECT_EQ(again, (QStringList{"fadeInTime=0.25@0", "fadeOutTime=0.75@6", "mfps=1@0",
                                  "undoStep=70@2"}));
    EXPECT_EQ(waiting, SharedSettings::mostInOneBatch + again.size());
}

TEST_F(Shared, WhatIsSetOnAChangeOfAnotherIsBasedOnIt)
{
    settings->setConnected(true);
    settings->watch([this](const QString& /*name*/, const QVariant& value) {
        EXPECT_EQ(kept("undoStep"), "") << "it is shown before it is in the file";
        EXPECT_TRUE(settings->write({{"undoStep", value.toInt() + 1}}));
    });
    settings->takeChanges({there("undoStep", "70", 9)});
    EXPECT_EQ(takeSent(), QStringList{"undoStep=71@9"});
    EXPECT_EQ(kept("undoStep"), "71");
}

TEST_F(Shared, WhatTheFileDoesNotTakeIsToldAndHoldsOnlyWhereEtcdHasItAlready)
{
    SKIP_WITHOUT_FULL_DISK();
    settings->setConnected(true);
    {
        const FullDisk full;
        EXPECT_FALSE(settings->write({{"undoStep", 80}}));
        EXPECT_TRUE(settings->lastError().contains(" (unless the show takes the change"));
        EXPECT_FALSE(settings->write({{"undoStep", 81}}) || settings->lastError().contains("show"));
        settings->takeChanges({there("efps", "1", 8)});
        settings->takeChanges({there("efps", "1", 8)}); // as it is read again
        EXPECT_EQ(readings, 2);
        EXPECT_EQ(std::exchange(told, {}), QStringList{"not kept efps"});
    }
    const auto batch = sent;
    EXPECT_EQ(takeSent(), QStringList{"undoStep=80@0"});
    EXPECT_TRUE(settings->loadAll().isEmpty());
    settings->takeAnswer(batch, written(9));
    EXPECT_EQ(shown, (QStringList{"efps=1", "efps=1", "undoStep=80"}));
    {
        const FullDisk full;
        EXPECT_FALSE(settings->write({{"undoStep", 90}, {"mfps", 1}}));
        settings->takeChanges({there("fadeInTime", "2", 10)});
        EXPECT_EQ(std::exchange(told, {}), QStringList{"not kept fadeInTime"}) << "told anew";
    }
    EXPECT_TRUE(settings->write({{"undoStep", 82}, {"mfps", 1}}));
    start();
    EXPECT_EQ(waiting, 2);
    settings->setConnected(true);
    const auto waits = sent;
    QStringList both = takeSent();
    both.sort();
    EXPECT_EQ(both, (QStringList{"mfps=1@0", "undoStep=82@9"}));
    etcd::Answer answer;
    answer.values = {there("mfps", "0", 11)};
    const FullDisk full;
    settings->takeAnswer(waits, answer);
    settings->takeAnswer(waits, answer); // it was sent again
    EXPECT_EQ(told, (QStringList{"lost mfps: 1, 0 by Machine b", "not kept mfps"}));
}

TEST_F(Shared, AnotherShowOfTheSameNameIsJoinedAndNotOverwritten)
{
    const auto show = [](const QByteArray& id) {
        std::vector<KeyValue> values{there("undoStep", "60", 300)};
        if (!id.isEmpty()) {
            values.insert(values.begin(), {"/s/id", id, 301});
        }
        return SharedSettings::Page{values};
    };
    for (const auto& [before, now, isOther] : {std::tuple("", "", false),
                                               {"", "A", false}, // the file is of an older version
                                               {"A", "A", false},
                                               {"A", "B", true},
                                               {"A", "", true}}) {
        SCOPED_TRACE(::testing::Message() << before << now);
        startAnew();
        settings->takePage(show(before));
        settings->takeChanges({there("undoStep", "70", 5000), there("efps", "1", 5000)});
        settings->write({{"undoStep", 80}});
        start();
        told.clear();
        settings->takePage(show(now));
        settings->takeChanges({there("mfps", "1", 302)});
        EXPECT_EQ(told.join(';'), isOther ? "replaced undoStep" : "");
        EXPECT_EQ(kept("undoStep"), isOther ? "60" : "80");
        EXPECT_EQ(kept("mfps"), "1");
        settings->setConnected(true);
        EXPECT_EQ(takeSent().join(';'), isOther ? "efps=1@0" : "undoStep=80@5000;efps=1@0");
    }
}

TEST_F(Shared, WhatWaitsWhileTheFileTakesNothingGoesOnAfterwards)
{
    SKIP_WITHOUT_FULL_DISK();
    const SharedSettings::Page other{{{"/s/id", "B", 9}}};
    settings->takePage({{{"/s/id", "A", 9}}});
    settings->write({{"canvasColor", QString(SharedSettings::longestValue, 'x')}});
    {
        const FullDisk full;
        settings->setConnected(true);
        settings->setConnected(true);
        EXPECT_EQ(std::exchange(told, {}), (QStringList{"too long canvasColor", "not kept "}));
        settings->setAgain({"undoStep", 80, 70, "b"});
        EXPECT_EQ(std::exchange(told, {}),
                  (QStringList{"not set undoStep", "lost undoStep: 80, 70 by b"}));
        settings->shareShortcuts({{"shortcut:5:", "Ctrl + K"}}, false);
        settings->setConnected(false);
        settings->takePage(other);
        settings->takeChanges({there("undoStep", "70", 9)});
        settings->setConnected(true);
        EXPECT_TRUE(sent.empty() && shown.isEmpty()) << "the outbox is still that of show A";
    }
    settings->takePage(other);
    EXPECT_EQ(takeSent(), QStringList{"shortcut:5:=Ctrl + K@0"});
    EXPECT_EQ(waiting, 1) << "what is too long stays here";
    startAnew();
    for (const char* name : {"canvasColor", "mfps", "efps"}) {
        settings->write({{name, QString(SharedSettings::longestValue * 9 / 10, 'x')}});
    }
    settings->setConnected(true);
    EXPECT_LT(sent.size(), 3U) << "no more than etcd takes at once";
}

TEST(ShowAddress, IsTakenApartAndRefusedWhereItIsWrong)
{
    const auto address = ShowAddress::parse("etcds://a.example:1234,[::1],b/My-Show_1");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->hosts, (QStringList{"a.example:1234", "[::1]:2379", "b:2379"}));
    EXPECT_TRUE(address->isEncrypted);
    EXPECT_EQ(address->show, "My-Show_1");
    for (const char* wrong :
         {"etcd://a", "etcd://a/", "etcd:///x", "etcd://a:0/x", "etcd://a:65536/x", "etcd://a,/x",
          "etcd://user:pw@a/x", "etcd://a/x/y", "etcd://a/..", "http://a/x", "etcd://a/x\n"}) {
        EXPECT_FALSE(ShowAddress::parse(wrong)) << wrong;
    }
}

// Whoever names authorities and a login gets these, or no connection.
TEST(ShowSetup, IsRefusedWhereAFileOfItCannotBeUsed)
{
    const QTemporaryDir folder;
    writeFile(folder.filePath("login"), "ann \r\nse cret\r\n");
    ShowSetup::Problem problem;
    const auto read = [&](const QStringList& options) {
        problem = {};
        QCommandLineParser arguments;
        arguments.addOption({"store", {}, "show"});
        ShowSetup::addOptions(arguments);
        EXPECT_TRUE(arguments.parse(QStringList{"mivohost"} + options));
        return ShowSetup::read(arguments, folder.path(), problem);
    };
    const QString login = "--store-login=" + folder.filePath("login");
    for (const char* authorities : {"absent", "login", "."}) {
        const QString file = QDir::toNativeSeparators(folder.filePath(authorities));
        EXPECT_FALSE(read({"--store=etcds://a/show", "--store-ca=" + file, login}));
        EXPECT_TRUE(problem.reason.startsWith(file + ": ")) << problem.reason;
        EXPECT_EQ(problem.code, notRead);
    }
    qputenv("MIVO_STORE_PASSWORD", "secret");
    EXPECT_FALSE(read({login})); // no show
    EXPECT_EQ(problem.code, badArgument);
    EXPECT_FALSE(qEnvironmentVariableIsSet("MIVO_STORE_PASSWORD")) << "programs would get it";
    const auto setup = read({"--store=etcd://a/show", login, "--machine-name=left"});
    ASSERT_TRUE(setup) << problem.reason;
    EXPECT_EQ(setup->servers.user + '/' + setup->servers.password, "ann/se cret");
    EXPECT_EQ(setup->name, "left");
    const QString idFile = folder.filePath("machine-id");
    const QByteArray id = readFile(idFile);
    EXPECT_EQ(setup->machine, id);
    for (const QByteArray& edited : {id, "\xef\xbb\xbf{" + id + "}\r\n"}) {
        writeFile(idFile, edited);
        EXPECT_EQ(read({"--store=etcd://a/show"})->machine, setup->machine);
    }
    for (const QByteArray& unusable : {QByteArray(), id.left(20)}) {
        writeFile(idFile, unusable);
        EXPECT_FALSE(read({"--store=etcd://a/show"})) << "it would be another machine";
        EXPECT_TRUE(problem.reason.startsWith(QDir::toNativeSeparators(idFile) + ": "))
            << problem.reason;
        EXPECT_EQ(problem.code, storeFailed);
        EXPECT_EQ(readFile(idFile), unusable);
    }
}

TEST(ShowSetup, BeginsWithTheOwnSettingsAndNotWithoutThemWhereTheyAreDamaged)
{
    const QTemporaryDir folder;
    const QString own = folder.filePath("settings.sqlite");
    writeFile(own + ".copy-1");
    QString error;
    EXPECT_FALSE(ShowSetup().share(
        SqlitePersistence::open(folder.filePath("show.sqlite")).persistence, own, error));
    EXPECT_EQ(error, QDir::toNativeSeparators(own) + ": the file is missing");
}

TEST(EtcdMessages, AreTakenOnlyAsEtcdSendsThem)
{
    const QByteArray kv = R"("key":"YQ==","value":"Yg==","mod_revision":"7")";
    const QByteArray head = R"({"header":{"revision":"9"},)";
    const auto found = etcd::readAnswer(200, head + R"("more":true,"kvs":[{)" + kv + "}]}");
    ASSERT_EQ(found.values.size(), 1U);
    EXPECT_TRUE(found.hasMore);
    EXPECT_EQ(found.values[0].key + found.values[0].value, "ab");
    EXPECT_EQ(found.values[0].revision, 7);
    const QByteArray report = R"({"result":{"header":{"revision":"9"},)";
    // Each with its status of HTTP; 0: what a watch reports.
    const std::vector<std::tuple<int, QByteArray, Status>> answers{
        {200, "", Status::garbage},
        {200, "{}", Status::garbage},
        {200, head + R"("kvs":{}})", Status::garbage},
        {200, head + R"("kvs":[7]})", Status::garbage},
        {200, head + R"("kvs":[{"key":"*","mod_revision":"7"}]})", Status::garbage},
        {200, head + R"("kvs":[{"key":"YQ==","mod_revision":"many"}]})", Status::garbage},
        {200, head + R"("kvs":[{"key":"YQ=="}]})", Status::garbage},
        {200, head + R"("succeeded":"yes"})", Status::garbage},
        {200, QByteArray(100000, '['), Status::garbage},
        {502, "{}", Status::garbage},
        {503, R"({"error":"no leader","code":14})", Status::unreachable},
        {400, R"({"error":"required revision has been compacted","code":11})", Status::compacted},
        {401, R"({"error":"invalid auth token"})", Status::signedOut},
        {400, R"({"error":"space exceeded","code":8})", Status::refused},
        {0, report + R"("canceled":true,"compact_revision":"3"}})", Status::compacted},
        {0, report + R"("events":[{"kv":{}}]}})", Status::garbage},
        {0, R"({"error":{"grpc_code":14,"message":"x"}})", Status::unreachable},
    };
    for (const auto& [status, body, expected] : answers) {
        EXPECT_EQ(status == 0 ? etcd::readReport(body).status
                              : etcd::readAnswer(status, body).status,
                  expected)
            << body.left(80).constData();
    }
    const auto read =
        etcd::readReport(report + R"("events":[{"type":"DELETE","kv":{)" + kv + "}}]}}");
    ASSERT_EQ(read.values.size(), 1U);
    EXPECT_TRUE(read.values[0].isDeleted);
}

} // namespace sharedsettingstest
