#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>

namespace mivohost {

/// The path of the action that the type identifies, or else `path`. Any thread.
std::string actionPath(int type, const std::string& path);

/// The group and name of an action of the table in the language in force, as names recur; of any
/// other one its path, as it is. GUI thread.
QString actionText(const std::string& path);

/// What kinds of controllers are called, in every language, by EnumPeripheralShortCutType; empty
/// for the keyboard.
const QStringList& kindNames();

} // namespace mivohost
