#pragma once

#include <QtCore/QString>

namespace mivohost {

class MainWindow;

/// Draws the main window and every settings page, each in every language, into PNG files of
/// `folder`, which is made when it is missing. On a screen of another scale the names end in "@2x"
/// or the like. False when a file cannot be written.
bool drawPictures(MainWindow& window, const QString& folder);

} // namespace mivohost
