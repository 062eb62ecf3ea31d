// Replaces the fuzzer: tries each file of the named folders once.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** arguments)
{
    unsigned tried = 0;
    for (int i = 1; i < count; ++i) {
        std::set<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i]))
            files.insert(entry.path());
        for (const std::filesystem::path& file : files) {
            std::printf("%s\n", file.c_str());
            std::fflush(stdout);  // so that the last one named is the one that failed
            std::ifstream stream(file, std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++tried;
        }
    }
    std::printf("%u inputs tried\n", tried);
    return tried > 0 ? 0 : 1;
}
