#include "support/rfbclient.h"

#include <QtCore/QDataStream>
#include <QtCore/QElapsedTimer>
#include <QtCore/QtEndian>
#include <QtCore/QThread>

namespace {

template <typename... Fields>
QByteArray message(Fields... fields)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << fields);
    return bytes;
}

} // namespace

bool RfbClient::connectTo(quint16 port)
{
    QElapsedTimer elapsed;
    elapsed.start();
    do {
        m_socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        if (m_socket.waitForConnected(1000)) {
            break;
        }
        QThread::msleep(100);
    } while (elapsed.elapsed() < 30000);

    QByteArray bytes;
    if (!read(12, bytes)) { // the server's protocol version
        return false;
    }
    send("RFB 003.003\n");
    if (!read(4, bytes)) { // security: none
        return false;
    }
    send(message(quint8(1))); // shared session
    if (!read(24, bytes)) {   // size, pixel format, length of the name
        return false;
    }
    if (!read(qFromBigEndian<qint32>(bytes.constData() + 20), bytes)) {
        return false;
    }
    send(message(quint8(2), quint8(0), quint16(1), qint32(0))); // raw pixels only
    return true;
}

void RfbClient::key(quint32 symbol)
{
    for (const quint8 down : {quint8(1), quint8(0)}) {
        send(message(quint8(4), down, quint16(0), symbol));
    }
}

void RfbClient::chord(const std::vector<quint32>& symbols)
{
    for (const quint32 symbol : symbols) {
        send(message(quint8(4), quint8(1), quint16(0), symbol));
    }
    for (auto symbol = symbols.rbegin(); symbol != symbols.rend(); ++symbol) {
        send(message(quint8(4), quint8(0), quint16(0), *symbol));
    }
}

void RfbClient::type(const QString& text)
{
    for (const QChar character : text) {
        key(character.unicode());
    }
}

bool RfbClient::read(qint64 bytes, QByteArray& into)
{
    while (m_socket.bytesAvailable() < bytes) {
        if (!m_socket.waitForReadyRead(10000)) {
            return false;
        }
    }
    into = m_socket.read(bytes);
    return true;
}

void RfbClient::send(const QByteArray& bytes)
{
    m_socket.write(bytes);
    m_socket.flush();
}
