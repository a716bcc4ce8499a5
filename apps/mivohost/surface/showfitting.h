#pragma once

class QWidget;

namespace mivohost {

/// Shows a window no larger, with its frame, than its screen, and wholly on that; never smaller
/// than its content allows. GUI thread.
void showFitting(QWidget& window);

} // namespace mivohost
