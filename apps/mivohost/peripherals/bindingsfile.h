#pragma once

#include <QtCore/QString>

#include <string>

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class Peripherals;

/// All bindings, of keys and of devices, in the form of the shortcut file. GUI thread, as all here.
std::string exportedBindings(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals);

/// Replaces all bindings by those of `json`, in memory, in the shortcut file and in the store, or
/// none of them. What cannot be bound, or would be a second binding of an action or of a key, is
/// left out; the log has the first few, and how many they were. Returns why nothing was imported,
/// for reasonText(); empty when it was.
QString importBindings(const std::string& json, mivo::settings::ShortCutMgr& manager,
                       Peripherals& peripherals);

} // namespace mivohost
