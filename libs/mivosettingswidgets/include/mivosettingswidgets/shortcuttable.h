#pragma once

#include "mivohostapi/shortcuttypes.h"
#include "mivosettingswidgets/export.h"

#include <QtCore/QString>

#include <array>
#include <string>
#include <string_view>

namespace mivo::settings {

/// An action that a message of a controller can trigger, and its path.
struct PeripheralAction
{
    int type;              ///< an EnumShortCutType
    std::string_view path; ///< with peripheralPrefix
};

inline constexpr std::string_view peripheralPrefix = "/Peripherals/";

/// In the order in which they are shown. Some words are misspelt; they are identifiers that the
/// host and its controllers share.
inline constexpr std::array peripheralActions{
    PeripheralAction{187, "/Peripherals/Global/OutputSwitch"},
    PeripheralAction{186, "/Peripherals/Global/FTBSwitch"},
    PeripheralAction{189, "/Peripherals/Global/MuteSwitch"},
    PeripheralAction{188, "/Peripherals/Global/TestImgSwitch"},
    PeripheralAction{145, "/Peripherals/Stage/MonitorLock"},
    PeripheralAction{146, "/Peripherals/Stage/MonitorGrap"},
    PeripheralAction{147, "/Peripherals/Stage/MonitorFill"},
    PeripheralAction{148, "/Peripherals/Stage/MonitorOrigin"},
    PeripheralAction{149, "/Peripherals/Stage/MonitorZoomIn"},
    PeripheralAction{150, "/Peripherals/Stage/MonitorZoomOut"},
    PeripheralAction{152, "/Peripherals/Stage/MonitorDisplay"},
    PeripheralAction{209, "/Peripherals/Stage/Cut"},
    PeripheralAction{210, "/Peripherals/Stage/Take"},
    PeripheralAction{200, "/Peripherals/Program/ProgramLayoutKeep"},
    PeripheralAction{199, "/Peripherals/Program/ClearAllMedia"},
    PeripheralAction{201, "/Peripherals/Program/LocateToOrigin"},
    PeripheralAction{202, "/Peripherals/Program/LocateToCurProgram"},
    PeripheralAction{203, "/Peripherals/Program/AddProgram"},
    PeripheralAction{185, "/Peripherals/Progress/ProgressStop"},
    PeripheralAction{204, "/Peripherals/Progress/Positiving"},
    PeripheralAction{205, "/Peripherals/Progress/CountDown"},
    PeripheralAction{206, "/Peripherals/Progress/Sync"},
    PeripheralAction{207, "/Peripherals/Progress/PlayPause"},
    PeripheralAction{190, "/Peripherals/Toolbar/NewFile"},
    PeripheralAction{191, "/Peripherals/Toolbar/SaveFile"},
    PeripheralAction{192, "/Peripherals/Toolbar/PackageFile"},
    PeripheralAction{193, "/Peripherals/Toolbar/RecoveryLayout"},
    PeripheralAction{194, "/Peripherals/Toolbar/SaveLayout"},
    PeripheralAction{195, "/Peripherals/Toolbar/LayoutManager"},
    PeripheralAction{196, "/Peripherals/Toolbar/OutputManager"},
    PeripheralAction{197, "/Peripherals/Toolbar/3DEdit"},
    PeripheralAction{198, "/Peripherals/Toolbar/OpenPageTurning"},
    PeripheralAction{208, "/Peripherals/Toolbar/LockScreen"},
    PeripheralAction{100, "/Peripherals/ProgramProperty/ProgramUpInsert"},
    PeripheralAction{101, "/Peripherals/ProgramProperty/ProgramDownInsert"},
    PeripheralAction{102, "/Peripherals/ProgramProperty/ProgramDelete"},
    PeripheralAction{93, "/Peripherals/LayerProperty/LayerUpInsert"},
    PeripheralAction{94, "/Peripherals/LayerProperty/LayerDownInsert"},
    PeripheralAction{95, "/Peripherals/LayerProperty/LayerDelete"},
    PeripheralAction{96, "/Peripherals/LayerProperty/LayerClearBtn"},
    PeripheralAction{107, "/Peripherals/MediaProperty/MediaPlayback"},
    PeripheralAction{108, "/Peripherals/MediaProperty/MediaLastFrame"},
    PeripheralAction{109, "/Peripherals/MediaProperty/MediaStopPlay"},
    PeripheralAction{110, "/Peripherals/MediaProperty/CycleIndex"},
    PeripheralAction{111, "/Peripherals/MediaProperty/MediaNoJump"},
    PeripheralAction{112, "/Peripherals/MediaProperty/MediaProgramLoop"},
    PeripheralAction{113, "/Peripherals/MediaProperty/MediaNext"},
};

/// A path as the host is told of it: without the prefix, its words joined by colons.
MIVOSETTINGSWIDGETS_EXPORT std::string reportedPath(std::string_view path);

/// Whether a key sequence belongs to the application itself. Exact, case-sensitive.
MIVOSETTINGSWIDGETS_EXPORT bool isReservedKeySequence(const QString& text);

} // namespace mivo::settings
