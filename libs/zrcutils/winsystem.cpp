#include "zrcutils/winsystem.h"

namespace zrcutils {

namespace {

std::wstring wideOf(const std::string& text)
{
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // UTF-16 takes no more units than UTF-8 takes bytes
    wide.resize(static_cast<std::size_t>(::MultiByteToWideChar(
        CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, wide.data(), bytes)));
    return wide;
}

} // namespace

std::wstring longPath(const std::string& path)
{
    const std::wstring wide = path.find('\0') == std::string::npos ? wideOf(path) : std::wstring();
    if (wide.empty()) {
        return {};
    }
    std::wstring full(::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    if (full.empty()) {
        return {};
    }
    full.resize(
        ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.compare(0, 4, LR"(\\.\)") == 0) {
        return {};
    }
    const bool isLong = full.compare(0, 4, LR"(\\?\)") == 0;
    // Behind the one of the drive, a colon names a part of another file, which no listing shows.
    if (full.find(L':', isLong ? 6 : 2) != std::wstring::npos) {
        return {};
    }
    if (isLong) {
        return full;
    }
    return full.compare(0, 2, LR"(\\)") == 0 ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

std::string systemText(DWORD code)
{
    wchar_t wide[512];
    DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS
                                        | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                    nullptr, code, 0, wide, 512, nullptr);
    while (length > 0 && wide[length - 1] == L' ') {
        --length;
    }
    if (length == 0) {
        return "error " + std::to_string(code);
    }
    std::string text(length * 3, '\0'); // UTF-8 takes at most so many bytes
    text.resize(static_cast<std::size_t>(
        ::WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(length), text.data(),
                              static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

} // namespace zrcutils
