/* Runs a fuzz target over the files of folders, without a fuzzer: the corpus as a test. */
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t cb);
extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* pnArgs, char*** pcArgs);

int main(int nArgs, char** cArgs)
{
    if (LLVMFuzzerInitialize) {
        LLVMFuzzerInitialize(&nArgs, &cArgs);
    }
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < nArgs; i++) {
        for (const auto& entry : std::filesystem::directory_iterator(cArgs[i])) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const auto& path : files) {
        std::printf("%s\n", path.c_str());
        std::fflush(stdout);
        std::ifstream in(path, std::ios::binary);
        std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
        if (!in && !in.eof()) {
            return 1;
        }
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    /* A fault ends the program before this line; no file is none. */
    std::printf("%zu files\n", files.size());
    return files.empty();
}
