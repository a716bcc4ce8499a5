#pragma once

#include "mivostyle/export.h"

#include <QtCore/QString>
#include <QtCore/Qt>

#include <vector>

/// The look and the texts of the pages, compiled in as Qt resources. Any thread, if not said
/// otherwise.
namespace mivo::style {

/// The language files, in the form that SettingsDialog::loadLanguageFiles() takes: English ("en")
/// and Simplified Chinese ("zh_CN").
MIVOSTYLE_EXPORT std::vector<QString> languageFiles();

/// Dark for dark rooms; light for what is set up by day.
enum class Look { dark, light };

/// Gives the application a look: its style, font and style sheet, and the colours of its palette
/// but for those of windows, which stay the desktop's. May be called again for another look. GUI
/// thread. Icons are SVG files (":/mivo/style/icons/check.svg", ...), which need Qt's plugin for
/// SVG (libqt5svg5): without it they are missing.
MIVOSTYLE_EXPORT void apply(Look look, Qt::LayoutDirection direction = Qt::LeftToRight);

/// @{
/// The style sheet of a look, and the look with such a sheet that a host has changed. It has what
/// is rarely shown; the style draws the rest, where such a sheet has no rule of its own. A selector
/// names one class, object name or property, with at most one class around it; rules with any other
/// selector are left out. A rule does not change the size of a widget that has a fixed one. With a
/// layout from right to left, what it gives for one side holds for the other.
MIVOSTYLE_EXPORT void apply(Look look, const QString& sheet);
MIVOSTYLE_EXPORT QString styleSheet(Look look, Qt::LayoutDirection direction = Qt::LeftToRight);
/// @}

} // namespace mivo::style
