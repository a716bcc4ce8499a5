#include "surface/actiontext.h"

#include "base/hosttext.h"

#include <mivosettingswidgets/shortcuttable.h>

#include <algorithm>

namespace mivohost {

using mivo::settings::peripheralActions;
using mivo::settings::peripheralPrefix;

std::string actionPath(int type, const std::string& path)
{
    const auto* const found =
        std::find_if(peripheralActions.begin(), peripheralActions.end(),
                     [type](const auto& action) { return action.type == type; });
    return found == peripheralActions.end() ? path : std::string(found->path);
}

QString actionText(const std::string& path)
{
    const bool isKnown = std::any_of(peripheralActions.begin(), peripheralActions.end(),
                                     [&path](const auto& action) { return action.path == path; });
    if (!isKnown) {
        return QString::fromStdString(path);
    }
    const QString key = QString::fromStdString(path.substr(peripheralPrefix.size()));
    return hostText("ActionOfGroup").arg(hostText(key.section('/', 0, 0) + '/'), hostText(key));
}

const QStringList& kindNames()
{
    static const QStringList names{QString(), QStringLiteral("MIDI"), QStringLiteral("DMX"),
                                   QStringLiteral("OSC")};
    return names;
}

} // namespace mivohost
