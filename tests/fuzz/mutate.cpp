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
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::string> ReadSeeds(const std::filesystem::path& folder) {
  std::vector<std::string> seeds;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return seeds;
}

class Mutator {
 public:
  explicit Mutator(std::vector<std::string> seeds) : seeds_(std::move(seeds)) {}

  std::string Next() {
    std::string text = AnySeed();
    for (std::size_t edits = 1 + random_() % 4; edits > 0; --edits) Edit(text);
    return text;
  }

 private:
  const std::string& AnySeed() { return seeds_[random_() % seeds_.size()]; }
  std::size_t Position(const std::string& text) { return random_() % (text.size() + 1); }

  void Edit(std::string& text) {
    const std::size_t at = Position(text);
    switch (random_() % 5) {
      case 0:
        if (at < text.size()) text[at] = static_cast<char>(random_());
        return;
      case 1:
        text.erase(at, random_() % 8);
        return;
      case 2:
        text.insert(at, 1, static_cast<char>(random_()));
        return;
      case 3: {  // a piece of the same text, or of another one
        const std::string& other = AnySeed();
        text.insert(at, other.substr(Position(other), random_() % 32));
        return;
      }
      default:
        text.resize(at);
    }
  }

  std::vector<std::string> seeds_;
  std::mt19937 random_{1};
};

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
  Mutator mutator(seeds);
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::seconds(argc > 2 ? std::atoi(argv[2]) : 1);
  std::size_t runs = 0;
  for (; std::chrono::steady_clock::now() < end; ++runs) RunOn(mutator.Next());
  std::printf("%zu inputs\n", runs);
  return 0;
}
