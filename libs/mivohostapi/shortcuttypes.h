#pragma once

#include "mivohostapi/settingsrecords.h"

#include <QtCore/QMetaType>

#include <cstdint>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

// Shortcuts: what binds a key or a message of a controller to an action of the application.

Q_DECLARE_METATYPE(std::vector<std::string>)

/// An action. The host has many; these are the ones that mean something to the library itself.
enum EnumShortCutType : std::int32_t {
    /// A whole family of actions that are told apart by their paths.
    ShortCutOfPath = 211
};

/// What triggers an action.
enum EnumPeripheralShortCutType {
    PeripheralKeyboard = 0,
    PeripheralMidi = 1,
    PeripheralDmx = 2,
    PeripheralOsc = 3
};
Q_DECLARE_METATYPE(EnumPeripheralShortCutType)

/// How an action is identified: by its path, or by its EnumShortCutType.
enum ShortCutModuleType { ShortCutModulePath = 0, ShortCutModuleIndex = 1 };

/// One bound action. Texts in UTF-8.
struct STShortCutItem
{
    EnumShortCutType type{};
    std::string path;        ///< identifies the action where `type` is ShortCutOfPath
    std::string shortCutStr; ///< as shown to the user, for example "Ctrl + Shift + K"

    auto fields() const { return std::tie(type, path, shortCutStr); }

    friend bool operator==(const STShortCutItem& a, const STShortCutItem& b)
    {
        return a.fields() == b.fields();
    }
    friend std::ostream& operator<<(std::ostream& out, const STShortCutItem& item)
    {
        return out << item.type << " \"" << item.path << "\": " << item.shortCutStr;
    }
};

/// All bindings of keys.
struct STLinkShortCutInfo
{
    std::vector<STShortCutItem> indexShortCutList; ///< every type but ShortCutOfPath
    std::vector<STShortCutItem> pathShortCutList;  ///< type ShortCutOfPath
    std::vector<STShortCutItem> shortCutInfoList; ///< all, as last read from or written to the file
};
Q_DECLARE_METATYPE(STLinkShortCutInfo)
