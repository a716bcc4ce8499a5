#pragma once

#include <QtCore/QString>

#include <string>

namespace mivohost {

/// The path of the action that the type identifies, or else `path`. Any thread.
std::string actionPath(int type, const std::string& path);

/// The group and name of an action of the table in the language in force, as names recur; of any
/// other one its path, as it is. GUI thread.
QString actionText(const std::string& path);

} // namespace mivohost
