#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace mivohost {

/// Loads the language files, in the system's language; a key without a text is logged. GUI thread.
void loadLanguages();

/// English, unless the system's is Chinese.
QString systemLanguage();

/// The language that this name of it stands for, whatever the case of its letters; the system's
/// where there is none such.
QString languageOf(const QString& name);

/// Puts all texts into this language: the host's, those of Qt's own dialogs, and the reasons why
/// something failed. What is shown already keeps its texts. GUI thread.
void switchTexts(const QString& language);

/// The text of the host's own catalogue in the language in force. GUI thread.
QString hostText(const QString& key);
inline QString hostText(const char* key)
{
    return hostText(QString::fromLatin1(key));
}

/// These, one after the other. GUI thread.
QString listText(const QStringList& items);

/// A date and time of day as the system writes them, in this machine's time zone. Any thread.
QString timeText(const QDateTime& time);

/// A text as it is looked for: without case and accents. Any thread.
QString searchText(const QString& text);

/// Why something failed, as it is to be shown: in the language in force as far as the host knows
/// the text, else as it is. It may stand behind what failed, "/a/b: the reason", and before a
/// closer one in brackets. GUI thread.
QString reasonText(const QString& reason);

} // namespace mivohost
