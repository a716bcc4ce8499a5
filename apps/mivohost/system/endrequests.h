#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtGui/qwindowdefs.h>

class QWidget;

namespace mivohost {

/// Tells that the program is to end though nobody has closed its window: by SIGTERM, SIGINT or
/// SIGHUP, on Windows by Ctrl+C or the end of its console, or because the display has gone. One at
/// a time, on the GUI thread.
///
/// A second one ends the program at once. A signal that the program was started to ignore stays
/// ignored.
class EndRequests : public QObject
{
    Q_OBJECT

public:
    /// Beside the name of `window`, which outlives it, the system shows why the end of the session
    /// waits for this program.
    explicit EndRequests(const QWidget& window);
    ~EndRequests() override;

signals:
    /// The last moment to save something without asking. When the display has gone the program ends
    /// as soon as the slots return, and no event is handled any more.
    void requested();
    /// The session is to end and waits for the slots, though another program or the user may still
    /// call that off. When it has ended the program is quit, or is there no more.
    void sessionEnds();
    /// It does not end after all. Only Windows tells.
    void sessionGoesOn();

private:
    void watch();
    void unwatch();
    static void explainDelay(WId window, const QString& reason);

    bool m_sessionEnds = false; // asked for, and not called off
};

} // namespace mivohost
