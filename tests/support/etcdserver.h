#pragma once

#include "support/test.h"

#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <csignal>
#include <sys/resource.h>

/// Members of one etcd, on ports of the loopback that were free.
class EtcdServers
{
public:
    static bool isInstalled() { return !QStandardPaths::findExecutable("etcd").isEmpty(); }

    explicit EtcdServers(int members, QStringList arguments = {})
        : m_arguments(std::move(arguments)), m_members(static_cast<std::size_t>(members))
    {
        qputenv("ETCDCTL_API", "3");
        for (const Member& member : m_members) {
            m_hosts.append(QStringLiteral("127.0.0.1:%1").arg(member.client));
            m_cluster += QStringLiteral("m%1=http://127.0.0.1:%1,").arg(member.peer);
        }
        m_cluster.chop(1);
        act("start all");
        const bool isEncrypted = m_arguments.contains("--cert-file");
        const auto answers = [&] { return !ctl({"endpoint", "health"}).isEmpty(); };
        EXPECT_TRUE(isEncrypted || QTest::qWaitFor(answers, 20000));
    }
    ~EtcdServers() { act("kill all"); }

    QString host(int i) const { return m_hosts.at(i); }
    const QStringList& hosts() const { return m_hosts; }

    /// "start", "kill", "hang", "continue", or "fill" (the disk), and which members: a number,
    /// "leader" or "all".
    void act(const QString& what)
    {
        const QString which = what.section(' ', 1);
        const int number = which == "leader" ? leader() : which.toInt();
        for (int i = 0; i < m_hosts.size(); ++i) {
            if (which != "all" && i != number) {
                continue;
            }
            QProcess& process = *at(i).process;
            const auto id = static_cast<pid_t>(process.processId());
            const bool runs = process.state() != QProcess::NotRunning;
            if (what.startsWith("start") && !runs) {
                start(i);
            } else if (what.startsWith("kill") && runs) {
                process.kill();
                process.waitForFinished();
            } else if (what.startsWith("fill") && runs) {
                const rlimit none{0, RLIM_INFINITY};
                ::prlimit(id, RLIMIT_FSIZE, &none, nullptr);
            } else if (runs && !what.startsWith("start")) {
                ::kill(id, what.startsWith("hang") ? SIGSTOP : SIGCONT);
            }
        }
    }

    /// What etcdctl says; empty where it fails.
    QByteArray ctl(const QStringList& arguments, int i = 0)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start("etcdctl", QStringList{"--endpoints", host(i)} + arguments);
        process.waitForFinished(20000);
        return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
    }
    /// Has the members drop what was before the present revision.
    void compact() { EXPECT_FALSE(ctl({"compact", field("Revision")}).isEmpty()); }
    static quint16 freePort()
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        return server.serverPort();
    }

private:
    /// What a member says of its state.
    QByteArray field(const QByteArray& name, int i = 0)
    {
        const QByteArray status = ctl({"endpoint", "status", "-w", "fields"}, i);
        const int at = status.indexOf('"' + name + "\" : ");
        return status.mid(at).split('\n')[0].split(':').last().trimmed();
    }
    /// Begins to start it with what it had before.
    void start(int i)
    {
        const Member& member = at(i);
        const QString scheme = m_arguments.contains("--cert-file") ? "https" : "http";
        const QString peer = QStringLiteral("http://127.0.0.1:%1").arg(member.peer);
        const QString client = scheme + "://" + host(i);
        member.process->setStandardErrorFile(m_folder.filePath("log"), QIODevice::Append);
        member.process->start(
            "etcd", QStringList{"--name", QStringLiteral("m%1").arg(member.peer), "--data-dir",
                                m_folder.filePath(QString::number(i)), "--listen-client-urls",
                                client, "--advertise-client-urls", client, "--listen-peer-urls",
                                peer, "--initial-advertise-peer-urls", peer, "--initial-cluster",
                                m_cluster, "--logger", "zap"}
                        + m_arguments);
        member.process->waitForStarted();
    }
    int leader()
    {
        for (int i = 0; i < m_hosts.size(); ++i) {
            if (field("MemberID", i) == field("Leader", i)) {
                return i;
            }
        }
        ADD_FAILURE() << "no leader";
        return 0;
    }

    struct Member
    {
        quint16 client = freePort();
        quint16 peer = freePort();
        std::unique_ptr<QProcess> process = std::make_unique<QProcess>();
    };
    const Member& at(int i) const { return m_members[static_cast<std::size_t>(i)]; }

    QTemporaryDir m_folder;
    QStringList m_arguments;
    QStringList m_hosts;
    QString m_cluster;
    std::vector<Member> m_members;
};
