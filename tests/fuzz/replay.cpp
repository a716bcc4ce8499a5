// Runs a fuzz target over the files of a folder, where there is no fuzzer.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int argc, char** argv)
{
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[argc - 1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> content((std::istreambuf_iterator<char>(file)), {});
        const std::vector<std::uint8_t> bytes(content.begin(), content.end());
        std::printf("%s, %zu bytes\n", entry.path().filename().string().c_str(), bytes.size());
        std::fflush(stdout); // the name of what crashes is to be seen
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        ++files;
    }
    return files > 0 ? 0 : 1;
}
