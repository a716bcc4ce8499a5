#include "mivosettingswidgets/shortcuttable.h"

#include <algorithm>
#include <set>

namespace mivo::settings {

std::string reportedPath(std::string_view path)
{
    std::string reported(path);
    for (auto at = reported.find(peripheralPrefix); at != std::string::npos;
         at = reported.find(peripheralPrefix, at)) {
        reported.erase(at, peripheralPrefix.size());
    }
    std::replace(reported.begin(), reported.end(), '/', ':');
    return reported;
}

bool isReservedKeySequence(const QString& text)
{
    static const std::set<QString> reserved{"Ctrl + C",
                                            "Ctrl + V",
                                            "Ctrl + X",
                                            "Ctrl + S",
                                            "Ctrl + Left",
                                            "Ctrl + Right",
                                            "Shift + Left",
                                            "Shift + Right",
                                            "Shift + Down",
                                            "Shift + Up",
                                            "Ctrl + A",
                                            "Ctrl + Shift + K",
                                            "Ctrl + Shift + M",
                                            "Ctrl + H",
                                            "Ctrl + Z",
                                            "Ctrl + Y",
                                            "Space",
                                            "Win",
                                            "Left",
                                            "Up",
                                            "Right",
                                            "Down",
                                            "Shift + H"};
    return reserved.count(text) != 0;
}

} // namespace mivo::settings
