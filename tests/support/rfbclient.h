#pragma once

#include <QtCore/QString>
#include <QtNetwork/QTcpSocket>

#include <vector>

/// A person at the keyboard of a program that runs on Qt's VNC platform, over the RFB protocol.
class RfbClient
{
public:
    /// Waits until the program listens on `port`; false after half a minute.
    bool connectTo(quint16 port);

    /// Presses and releases an X11 key symbol; for printable ASCII that is the character itself.
    void key(quint32 symbol);
    void type(const QString& text);
    /// Presses all keys in their order, and releases them in reverse.
    void chord(const std::vector<quint32>& symbols);

    static constexpr quint32 tab = 0xff09;
    static constexpr quint32 enter = 0xff0d;
    static constexpr quint32 up = 0xff52;
    static constexpr quint32 down = 0xff54;
    static constexpr quint32 escape = 0xff1b;
    static constexpr quint32 control = 0xffe3;
    static constexpr quint32 f5 = 0xffc2;

private:
    bool read(qint64 bytes, QByteArray& into);
    void send(const QByteArray& bytes);

    QTcpSocket m_socket;
};
