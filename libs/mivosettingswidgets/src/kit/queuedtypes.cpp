#include "mivosettingswidgets/queuedtypes.h"

#include <QtCore/QMetaMethod>

#include <map>
#include <mutex>
#include <string_view>
#include <tuple>

namespace mivo::settings {

int indexOfSlot(const QMetaObject* type, const char* name, const QByteArray& parameters)
{
    using Key = std::tuple<const QMetaObject*, const QByteArray*, std::string_view>;
    static std::mutex mutex;
    static std::map<Key, int> found; // only what there is, so no more than classes have

    const std::lock_guard lock(mutex);
    const auto known = found.find({type, &parameters, name});
    if (known != found.end()) {
        return known->second;
    }
    const int index = type->indexOfMethod((name + parameters).constData());
    if (index != -1) {
        const char* lasting = type->method(index).name().constData(); // part of the class
        found.emplace(Key(type, &parameters, lasting), index);
    }
    return index;
}

} // namespace mivo::settings
