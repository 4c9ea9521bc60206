#pragma once

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace dorvane::fuzz {

/// What random changes make of seeds, of which there is one at least; the same in every run.
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

}  // namespace dorvane::fuzz
