// Runs a fuzzer without a fuzzing engine: on every file of the folders given as arguments, and on random
// inputs, the same ones each time, as many as a number says.

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

namespace {

std::string current;
int replayed = 0;

void Run(const std::string& name, const std::vector<std::uint8_t>& input) {
    current = name;
    LLVMFuzzerTestOneInput(input.data(), input.size());
    ++replayed;
}

void RunFolder(const char* folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        Run(entry.path().string(), std::vector<std::uint8_t>(std::istreambuf_iterator<char>(file), {}));
    }
}

void RunRandomly(int count) {
    constexpr std::size_t kBytes = 4096;
    std::vector<std::uint8_t> input(kBytes);
    for (int i = 0; i < count; ++i) {
        std::mt19937 random(static_cast<unsigned>(i));
        for (std::uint8_t& byte : input) byte = static_cast<std::uint8_t>(random() >> 8);
        Run("random input " + std::to_string(i), input);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    std::signal(SIGABRT, [](int) { std::fprintf(stderr, "in %s\n", current.c_str()); });
    for (int i = 1; i < argumentCount; ++i) {
        const int count = std::atoi(arguments[i]);
        count > 0 ? RunRandomly(count) : RunFolder(arguments[i]);
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
