#pragma once

#include "mivostyle/export.h"

#include <QtCore/QString>
#include <QtCore/Qt>

#include <vector>

/// The look and the texts of the pages, compiled in as Qt resources. Any thread.
namespace mivo::style {

/// The language files, in the form that SettingsDialog::loadLanguageFiles() takes: English ("en")
/// and Simplified Chinese ("zh_CN").
MIVOSTYLE_EXPORT std::vector<QString> languageFiles();

/// The dark style sheet, for QApplication::setStyleSheet(). Its icons are SVG files
/// (":/mivo/style/icons/check.svg", ...), which need Qt's plugin for SVG (libqt5svg5): without it
/// they are missing.
MIVOSTYLE_EXPORT QString styleSheet();

/// Dark for dark rooms; light for what is set up by day.
enum class Look { dark, light };

/// The same sheet in the colours of a look. With a layout from right to left, what it gives for one
/// side holds for the other.
MIVOSTYLE_EXPORT QString styleSheet(Look look, Qt::LayoutDirection direction = Qt::LeftToRight);

} // namespace mivo::style
