#pragma once

class QAbstractButton;
class QString;

namespace mivohost {

/// Gives the button a text; its shortcut, which Qt replaces by that of the text, stays, and is in
/// its tip.
void setButtonText(QAbstractButton& button, const QString& text);

} // namespace mivohost
