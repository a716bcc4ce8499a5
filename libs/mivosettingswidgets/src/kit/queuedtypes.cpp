#include "mivosettingswidgets/queuedtypes.h"

#include <QtCore/QMetaMethod>

#include <cstddef>
#include <functional>
#include <mutex>
#include <string_view>
#include <unordered_map>

namespace mivo::settings {

namespace {

struct Slot
{
    const QMetaObject* type;
    const QByteArray* parameters;
    std::string_view name;

    bool operator==(const Slot& other) const
    {
        return type == other.type && parameters == other.parameters && name == other.name;
    }
};

struct SlotHash
{
    std::size_t operator()(const Slot& slot) const
    {
        const std::size_t hash = std::hash<std::string_view>()(slot.name);
        return hash ^ std::hash<const void*>()(slot.type)
               ^ std::hash<const void*>()(slot.parameters) << 1;
    }
};

} // namespace

int indexOfSlot(const QMetaObject* type, const char* name, const QByteArray& parameters)
{
    static std::mutex mutex;
    static std::unordered_map<Slot, int, SlotHash> found; // no more than classes have

    const std::lock_guard lock(mutex);
    const auto known = found.find({type, &parameters, name});
    if (known != found.end()) {
        return known->second;
    }
    const int index = type->indexOfMethod((name + parameters).constData());
    if (index != -1) {
        const char* lasting = type->method(index).name().constData(); // part of the class
        found.emplace(Slot{type, &parameters, lasting}, index);
    }
    return index;
}

} // namespace mivo::settings
