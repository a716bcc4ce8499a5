#pragma once

#include <QtCore/QObject>

class QWidget;

namespace mivohost {

/// Brings each window that opens, and of which a part is on no screen, onto its screen, and makes
/// it as much smaller as it must be for that; the same when a screen goes or becomes smaller. A
/// window of fixed size is of its own size again when it opens where that has room. GUI thread.
class ScreenFit : public QObject
{
public:
    ScreenFit();

    bool eventFilter(QObject* object, QEvent* event) override;
};

} // namespace mivohost
