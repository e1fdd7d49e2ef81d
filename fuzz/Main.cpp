// Runs a target over the files and folders that are named, in the order of their names: its seeds and what it found
// before, as an ordinary test and with any compiler.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path named(argv[i]);
        if (fs::is_regular_file(named)) {
            inputs.push_back(named);
        } else if (fs::is_directory(named)) {
            for (const auto& entry : fs::directory_iterator(named)) {
                if (entry.is_regular_file()) inputs.push_back(entry.path());
            }
        } else {
            std::cerr << "There is no file or folder " << named << "\n";
            return 1;
        }
    }
    if (inputs.empty()) {
        std::cerr << "There is nothing to replay\n";
        return 1;
    }
    std::sort(inputs.begin(), inputs.end());
    for (const auto& input : inputs) {
        std::cout << input.string() << std::endl;  // flushed: the last one named is the one that ends the process
        std::ifstream file(input, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::cout << inputs.size() << " inputs replayed\n";
    return 0;
}
