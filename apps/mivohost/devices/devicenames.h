#pragma once

#include <string>
#include <utility>
#include <vector>

namespace mivohost {

/// A device as the system lists it. Devices with the same id are twins that nothing tells apart; a
/// device keeps its id while it is plugged in.
struct ListedDevice
{
    std::string id;
    std::string name; ///< as a person knows it; several may have the same
};

/// Names devices, those of the same name by a running number: "X", "X #2".
class DeviceNames
{
public:
    /// The names of all devices that are there now, in their order. One that stays keeps its name.
    std::vector<std::string> update(const std::vector<ListedDevice>& devices);

private:
    std::vector<std::pair<ListedDevice, std::string>> m_named;
};

} // namespace mivohost
