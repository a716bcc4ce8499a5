#include <mivosettingswidgets/shortcutfile.h>

#include <cstdlib>
#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    using namespace mivo::settings;
    std::vector<STShortCutItem> items;
    try {
        items = parseShortCuts(std::string(reinterpret_cast<const char*>(bytes), size));
    } catch (const std::runtime_error&) {
        return 0;
    }
    if (parseShortCuts(formatShortCuts(items)) != items) {
        std::abort();
    }
    return 0;
}
