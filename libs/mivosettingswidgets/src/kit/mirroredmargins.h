#pragma once

class QWidget;

namespace mivo::settings {

/// Swaps the margins at both sides in all layouts of a page where it reads from right to left, and
/// back: Qt mirrors all but these.
void mirrorMargins(QWidget* page);

} // namespace mivo::settings
