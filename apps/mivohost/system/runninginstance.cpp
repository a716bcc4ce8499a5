#include "system/runninginstance.h"

#include "base/hostlog.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QStandardPaths>
#include <QtCore/QThread>
#include <QtNetwork/QLocalSocket>

#ifdef Q_OS_WIN
#include <QtCore/qt_windows.h>
#endif

#include <algorithm>

namespace mivohost {

namespace {

/// Of the local socket, on Windows of the pipe. Hashed, since the path of a socket must be short.
QString serverName(const QString& folder)
{
    const QByteArray hash =
        QCryptographicHash::hash(QDir(folder).canonicalPath().toUtf8(), QCryptographicHash::Sha1);
    const QString name = "mivohost-" + QString::fromLatin1(hash.toHex().left(16));
#ifdef Q_OS_WIN
    return name;
#else
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + '/' + name;
#endif
}

} // namespace

RunningInstance::RunningInstance(const QString& folder)
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* request = m_server.nextPendingConnection()) {
            connect(request, &QLocalSocket::disconnected, request, &QObject::deleteLater);
            request->write("ok");
            request->disconnectFromServer();
            emit showRequested();
        }
    });
    const QString name = serverName(folder);
    QLocalServer::removeServer(name); // of a program that was killed
    if (!m_server.listen(name)) {
        hostLog()->warn("a second start cannot show this window: {}",
                        m_server.errorString().toStdString());
    }
}

bool RunningInstance::show(const QString& folder, int milliseconds)
{
#ifdef Q_OS_WIN
    // Only a program that somebody has just started may let another one come to the front.
    AllowSetForegroundWindow(ASFW_ANY);
#endif
    QElapsedTimer elapsed;
    elapsed.start();
    const auto left = [&] {
        return std::max(1, milliseconds - static_cast<int>(elapsed.elapsed()));
    };
    while (!elapsed.hasExpired(milliseconds)) {
        QLocalSocket socket;
        socket.connectToServer(serverName(folder));
        if (socket.waitForConnected(left()) && socket.waitForReadyRead(left())) {
            return true;
        }
        QThread::msleep(50);
    }
    return false;
}

} // namespace mivohost
