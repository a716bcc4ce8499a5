#include "devices/devicenames.h"

#include <algorithm>
#include <cstddef>

namespace mivohost {

std::vector<std::string> DeviceNames::update(const std::vector<ListedDevice>& devices)
{
    auto before = std::exchange(m_named, {});
    std::vector<std::string> names(devices.size());
    for (std::size_t i = 0; i < devices.size(); ++i) {
        const auto same = std::find_if(before.begin(), before.end(), [&](const auto& named) {
            return named.first.id == devices[i].id;
        });
        if (same != before.end()) {
            names[i] = same->second;
            before.erase(same);
        }
    }
    for (std::size_t i = 0; i < devices.size(); ++i) {
        for (int number = 1; names[i].empty(); ++number) {
            std::string name = devices[i].name;
            if (number > 1) {
                name += " #" + std::to_string(number);
            }
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                names[i] = std::move(name);
            }
        }
        m_named.emplace_back(devices[i], names[i]);
    }
    return names;
}

} // namespace mivohost
