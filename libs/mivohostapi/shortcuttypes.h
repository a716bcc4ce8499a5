#pragma once

#include "mivohostapi/records.h"

#include <QtCore/QMetaType>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

// Shortcuts: what binds a key or a message of a controller to an action of the application.

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
    EnumShortCutType type{}; ///< identifies the action, unless it is ShortCutOfPath
    std::string path;        ///< identifies the action where `type` is ShortCutOfPath
    std::string shortCutStr; ///< as shown to the user, for example "Ctrl + Shift + K"

    auto fields() const { return std::tie(type, path, shortCutStr); }
    MIVO_RECORD(STShortCutItem)
};

/// All bindings of keys.
struct STLinkShortCutInfo
{
    std::vector<STShortCutItem> indexShortCutList; ///< every type but ShortCutOfPath
    std::vector<STShortCutItem> pathShortCutList;  ///< type ShortCutOfPath
    std::vector<STShortCutItem> shortCutInfoList; ///< all, as last read from or written to the file
};
Q_DECLARE_METATYPE(STLinkShortCutInfo)
