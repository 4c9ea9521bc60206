// Stands in for libFuzzer where there is none: runs the target over its seeds, and for a while over
// what random changes make of them. The first argument is the folder of the seeds, the second how
// many seconds (1).

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/fuzz/fuzz.h"
#include "tests/fuzz/mutator.h"

namespace {

std::vector<std::string> ReadSeeds(const std::filesystem::path& folder) {
  std::vector<std::string> seeds;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return seeds;
}

void RunOn(const std::string& text) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> seeds = argc > 1 ? ReadSeeds(argv[1]) : std::vector<std::string>();
  if (seeds.empty()) {
    std::fputs("no seeds\n", stderr);
    return 2;
  }
  for (const std::string& seed : seeds) RunOn(seed);
  dorvane::fuzz::Mutator mutator(seeds);
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::seconds(argc > 2 ? std::atoi(argv[2]) : 1);
  std::size_t runs = 0;
  for (; std::chrono::steady_clock::now() < end; ++runs) RunOn(mutator.Next());
  std::printf("%zu inputs\n", runs);
  return 0;
}
