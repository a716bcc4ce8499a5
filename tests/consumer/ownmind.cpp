// Compiles next to the package's headers: operators and meta-types that many hosts have already.

#include <QtCore/QMetaType>
#include <QtCore/QString>

#include <ostream>
#include <string>

Q_DECLARE_METATYPE(std::string)

std::ostream& operator<<(std::ostream& out, const QString& text)
{
    return out << text.toStdString();
}

template <typename Record>
auto operator==(const Record& a, const Record& b) -> decltype(a.fields(), bool())
{
    return a.fields() == b.fields();
}

#include "allheaders.h"

// The records have their own operators beside the host's.
bool printAndCompare(std::ostream& out, const mivo::settings::STAllDeviceSoundCardMappings& record)
{
    out << record << QStringLiteral(" is one");
    return record != mivo::settings::STAllDeviceSoundCardMappings();
}
