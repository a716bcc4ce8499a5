#include "mivohostkit/settingsfile.h"

#include "mivohostkit/hostlog.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    using namespace mivohost;
    const auto file = SettingsFile::read(std::string(reinterpret_cast<const char*>(bytes), size));
    if (!file.error().isEmpty()) {
        return 0;
    }
    hostLog()->set_level(spdlog::level::off);
    SettingsStore store;
    std::map<SettingsFile::Key, QVariant> values;
    for (const auto& change : file.plan(store).changes) {
        values[change.key] = change.after;
    }
    // What is taken can be kept, and what is kept can be taken.
    const bool isKept = store.setAll(values).isEmpty() && file.plan(store).changes.empty();
    const auto sections = SettingsFile::sections();
    const auto written =
        SettingsFile::read(SettingsFile::write(store, std::set(sections.begin(), sections.end())));
    const auto plan = written.plan(store);
    if (!isKept || !written.error().isEmpty() || !plan.changes.empty() || !plan.refused.empty()) {
        std::abort();
    }
    return 0;
}
