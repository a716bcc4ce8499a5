#pragma once

#include <QtCore/QObject>
#include <QtNetwork/QLocalServer>

namespace mivohost {

/// Lets a second start of the program have the window of the first one shown. Programs that work on
/// other data, or for another user, are not concerned. GUI thread.
class RunningInstance : public QObject
{
    Q_OBJECT

public:
    /// Waits for requests of programs that are started on the data in `folder`, which only one
    /// program at a time may do. Logs a warning when it cannot.
    explicit RunningInstance(const QString& folder);

    /// Asks the program that works on the data in `folder` to show its window, for so long: it may
    /// still be starting. Blocks. False when there is no answer.
    static bool show(const QString& folder, int milliseconds = 3000);

signals:
    void showRequested();

private:
    QLocalServer m_server;
};

} // namespace mivohost
