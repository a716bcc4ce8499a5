#include "zrcutils/folderpermission.h"

#include "zrcutils/folderpermission_p.h"

#include <random>

bool folderWritePermission(const std::string& folder)
{
    if (folder.find('\0') != std::string::npos) {
        return false; // the system would take what stands before it for the path
    }
    static const char digits[] = "0123456789abcdef";
    std::random_device random;
    std::string name = ".write-probe-";
    for (int digit = 0; digit < 16; ++digit) {
        name += digits[random() % 16];
    }
    return zrcutils::writeAndRemove(folder, name);
}
