// Runs a fuzz target without a fuzzer: on each of the files named, or, without arguments, on inputs made from a fixed seed.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kSmokeInputs = 50000;
constexpr std::size_t kLongestInput = 600;

/// Any bytes, one in eight a line feed: inputs of many short texts.
std::vector<std::uint8_t> RandomInput(std::mt19937& random) {
  std::vector<std::uint8_t> input(random() % kLongestInput);
  std::generate(input.begin(), input.end(), [&] {
    const auto byte = static_cast<std::uint8_t>(random());
    return random() % 8 == 0 ? std::uint8_t{'\n'} : byte;
  });
  return input;
}

void RunSmoke() {
  std::mt19937 random(1);
  for (std::size_t count = 0; count < kSmokeInputs; ++count) {
    const std::vector<std::uint8_t> input = RandomInput(random);
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  std::cout << kSmokeInputs << " inputs\n";
}

bool RunFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (!file) {
    std::cerr << path << ": cannot be read\n";
    return false;
  }
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    RunSmoke();
    return 0;
  }
  return std::all_of(argv + 1, argv + argc, RunFile) ? 0 : 1;
}
