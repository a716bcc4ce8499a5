#pragma once

#include <QtCore/QMetaType>

#include <string>
#include <vector>

// Standard types that travel through queued calls of the library's own pages. Not in a public
// header, since a host may declare them as well.

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(std::vector<std::string>)
