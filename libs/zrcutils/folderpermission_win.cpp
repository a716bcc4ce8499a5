#include "zrcutils/folderpermission_p.h"

#include "zrcutils/winsystem.h"

namespace zrcutils {

bool writeAndRemove(const std::string& folder, const std::string& name)
{
    std::wstring path = longPath(folder);
    if (path.empty()) {
        return false;
    }
    if (path.back() != L'\\') {
        path += L'\\';
    }
    path.append(name.begin(), name.end());
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD written = 0;
    const bool wrote = ::WriteFile(file, "x", 1, &written, nullptr) && written == 1;
    return ::CloseHandle(file) && wrote;
}

} // namespace zrcutils
