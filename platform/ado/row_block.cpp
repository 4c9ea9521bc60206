#include "platform/ado/row_block.h"

#include <algorithm>

namespace dorvane::ado {

namespace {

constexpr std::size_t kChunkSize = 64 * 1024;
}

char* Arena::Allocate(std::size_t size) {
  used_ += size;
  if (size > kChunkSize / 4) {
    large_.push_back({std::make_unique_for_overwrite<char[]>(size), size});
    return large_.back().bytes.get();
  }
  if (current_ < chunks_.size() && position_ + size > kChunkSize) {
    ++current_;
    position_ = 0;
  }
  if (current_ == chunks_.size()) {
    chunks_.push_back({std::make_unique_for_overwrite<char[]>(kChunkSize), kChunkSize});
  }
  char* bytes = chunks_[current_].bytes.get() + position_;
  position_ += size;
  return bytes;
}

std::string_view Arena::Store(std::string_view bytes) {
  char* copy = Allocate(bytes.size());
  std::copy(bytes.begin(), bytes.end(), copy);
  return {copy, bytes.size()};
}

void Arena::Clear() {
  large_.clear();
  current_ = 0;
  position_ = 0;
  used_ = 0;
}

void RowBlock::Clear(std::size_t columns) {
  columns_ = columns;
  values_.clear();
  arena_.Clear();
}

std::span<Value> RowBlock::AppendRow() {
  values_.resize(values_.size() + columns_);
  return {values_.data() + values_.size() - columns_, columns_};
}

}  // namespace dorvane::ado
