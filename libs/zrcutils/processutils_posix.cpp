#include "zrcutils/processutils.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

namespace {

/// Empty for kernel threads and zombies: they have neither an executable nor arguments.
std::string executableOf(const std::filesystem::path& process)
{
    std::error_code error;
    std::string path = std::filesystem::read_symlink(process / "exe", error).string();
    if (error) {
        std::ifstream arguments(process / "cmdline", std::ios::binary);
        std::getline(arguments, path, '\0');
    } else {
        // What the system adds once the file was removed or replaced by an update.
        const std::string deleted = " (deleted)";
        if (path.size() > deleted.size()
            && path.compare(path.size() - deleted.size(), deleted.size(), deleted) == 0) {
            path.resize(path.size() - deleted.size());
        }
    }
    return path.substr(path.rfind('/') + 1);
}

} // namespace

bool ProcessUtils::processIsRunning(const std::string& executableName)
{
    if (executableName.empty()) {
        return false;
    }
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isdigit(c); })
            && executableOf(entry->path()) == executableName) {
            return true;
        }
    }
    return false;
}
