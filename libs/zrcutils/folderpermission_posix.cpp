#include "zrcutils/folderpermission_p.h"

#include <fcntl.h>
#include <unistd.h>

namespace zrcutils {

bool writeAndRemove(const std::string& folder, const std::string& name)
{
    // Held open, so that the file is removed where it was made, whatever is renamed meanwhile.
    const int directory = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) {
        return false;
    }
    const int file =
        ::openat(directory, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    bool can = file >= 0;
    if (can) {
        can = ::write(file, "x", 1) == 1;
        can = ::close(file) == 0 && can;
        can = ::unlinkat(directory, name.c_str(), 0) == 0 && can;
    }
    ::close(directory);
    return can;
}

} // namespace zrcutils
