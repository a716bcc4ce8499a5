#pragma once

#include "mivohostkit/settingsfile.h"

#include <QtCore/QString>

namespace mivohost {

// Settings in the words of the pages that show them, in the language in force. GUI thread.

QString sectionText(SettingsFile::Section section);
QString settingText(SettingsFile::Key key);
QString valueText(SettingsFile::Key key, const QVariant& value);

/// The same by the name and value as they are kept. What this version has no words for, as it is.
QString settingText(const QString& name);
QString valueText(const QString& name, const QVariant& kept);

/// The settings of these names, as one text.
QString settingsText(const QStringList& names);

/// What SettingsStore's failure handler is told, with the setting that it begins with in words.
QString storeProblem(const QString& reason);
/// Why a setting of a file is not taken.
QString refusedText(const SettingsFile::Refused& refused);
/// Why a file could not be read.
QString problemText(const SettingsFile& file);

} // namespace mivohost
