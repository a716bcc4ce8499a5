#pragma once

#include <QtCore/QString>

namespace mivohost {

class InputTap;
class MainWindow;

/// Draws the main window, the windows that it opens and every settings page, each in every
/// language, into PNG files of `folder`, which is made when it is missing. On a screen of another
/// scale the names end in "@2x" or the like. The input monitor shows samples, put into `tap`. False
/// when a file cannot be written.
bool drawPictures(MainWindow& window, InputTap& tap, const QString& folder);

} // namespace mivohost
