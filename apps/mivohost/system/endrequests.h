#pragma once

#include <QtCore/QObject>

namespace mivohost {

/// Tells that the program is to end though nobody has closed its window: by SIGTERM, SIGINT or
/// SIGHUP, or because the display has gone. One at a time, on the GUI thread.
///
/// A second signal ends the program at once. A signal that the program was started to ignore stays
/// ignored.
class EndRequests : public QObject
{
    Q_OBJECT

public:
    EndRequests();
    ~EndRequests() override;

signals:
    /// The last moment to save something without asking. When the display has gone the program ends
    /// as soon as the slots return, and no event is handled any more.
    void requested();
};

} // namespace mivohost
