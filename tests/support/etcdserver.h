#pragma once

#include "support/test.h"

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <signal.h>

/// Members of one etcd, on ports of the loopback that were free.
class EtcdServers
{
public:
    static bool isInstalled() { return !QStandardPaths::findExecutable("etcd").isEmpty(); }

    explicit EtcdServers(int members, QStringList arguments = {})
        : m_arguments(std::move(arguments)), m_members(static_cast<std::size_t>(members))
    {
        QStringList all;
        for (Member& member : m_members) {
            member.client = freePort();
            member.peer = freePort();
            all.append(QStringLiteral("m%1=http://127.0.0.1:%1").arg(member.peer));
        }
        m_cluster = all.join(',');
        for (int i = 0; i < members; ++i) {
            start(i);
        }
    }
    ~EtcdServers()
    {
        for (int i = 0; i < static_cast<int>(m_members.size()); ++i) {
            kill(i);
        }
    }

    QString host(int i) const { return QStringLiteral("127.0.0.1:%1").arg(at(i).client); }
    QStringList hosts() const
    {
        QStringList all;
        for (int i = 0; i < static_cast<int>(m_members.size()); ++i) {
            all.append(host(i));
        }
        return all;
    }

    /// Begins to start a member that does not run, with what it had before.
    void start(int i)
    {
        const Member& member = at(i);
        if (member.process->state() != QProcess::NotRunning) {
            return;
        }
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
    void signal(int i, int number)
    {
        ::kill(static_cast<pid_t>(at(i).process->processId()), number);
    }
    void kill(int i)
    {
        if (at(i).process->state() != QProcess::NotRunning) {
            signal(i, SIGKILL);
            at(i).process->waitForFinished();
        }
    }

    /// What etcdctl says; empty where it fails.
    QByteArray ctl(const QStringList& arguments, int i = 0)
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ETCDCTL_API", "3");
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start("etcdctl", QStringList{"--endpoints", host(i)} + arguments);
        process.waitForFinished(20000);
        return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
    }
    /// Has the members drop what was before the present revision.
    void compact()
    {
        const QByteArray status = ctl({"endpoint", "status", "-w", "fields"});
        const int at = status.indexOf("\"Revision\" : ") + 13;
        EXPECT_FALSE(ctl({"compact", status.mid(at).split('\n')[0].trimmed()}).isEmpty());
    }
    /// Whether a member answers; false after 20 s.
    bool answers(int i = 0)
    {
        return QTest::qWaitFor([&] { return !ctl({"endpoint", "health"}, i).isEmpty(); }, 20000);
    }

    static quint16 freePort()
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        return server.serverPort();
    }

private:
    struct Member
    {
        quint16 client = 0;
        quint16 peer = 0;
        std::unique_ptr<QProcess> process = std::make_unique<QProcess>();
    };
    const Member& at(int i) const { return m_members[static_cast<std::size_t>(i)]; }

    QTemporaryDir m_folder;
    QStringList m_arguments;
    QString m_cluster;
    std::vector<Member> m_members;
};
