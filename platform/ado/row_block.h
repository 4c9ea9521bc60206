#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "platform/ado/value.h"

namespace dorvane::ado {

/// Byte storage that grows in chunks, never moves what it holds, and keeps its ordinary chunks when
/// it is cleared, so that a block that is filled again and again allocates nothing.
class Arena {
 public:
  /// `size` bytes, valid until Clear.
  char* Allocate(std::size_t size);
  std::string_view Store(std::string_view bytes);
  void Clear();
  std::size_t BytesUsed() const { return used_; }

 private:
  struct Chunk {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
  };
  std::vector<Chunk> chunks_;
  std::vector<Chunk> large_;  // values with a chunk of their own; freed by Clear
  std::size_t current_ = 0;
  std::size_t position_ = 0;
  std::size_t used_ = 0;
};

/// How much of a result one block may hold. A block always takes at least one row.
struct BlockLimits {
  std::size_t rows = 1000;
  std::size_t bytes = 1 << 20;  // of values with their text and bytes
};

/// Rows in memory, values row by row, their text and bytes in the block's own arena. Reused from
/// block to block; its values are valid until the next Clear.
class RowBlock {
 public:
  explicit RowBlock(BlockLimits limits = {}) : limits_(limits) {}
  RowBlock(RowBlock&&) = default;
  RowBlock& operator=(RowBlock&&) = default;

  std::size_t Rows() const { return columns_ == 0 ? 0 : values_.size() / columns_; }
  std::size_t Columns() const { return columns_; }
  std::size_t Bytes() const { return arena_.BytesUsed() + values_.size() * sizeof(Value); }
  bool IsFull() const { return Rows() >= limits_.rows || Bytes() >= limits_.bytes; }
  std::span<const Value> Row(std::size_t row) const {
    return {values_.data() + row * columns_, columns_};
  }

  /// Empties the block for rows of `columns` values.
  void Clear(std::size_t columns);
  /// Appends a row of NULLs and returns it for filling; the span is valid until the next AppendRow.
  std::span<Value> AppendRow();
  /// Takes back the row appended last (a row that could not be filled).
  void DropLastRow() { values_.resize(values_.size() - columns_); }
  /// Where the values of this block keep their text and bytes.
  Arena& Storage() { return arena_; }

 private:
  BlockLimits limits_;
  std::size_t columns_ = 0;
  std::vector<Value> values_;
  Arena arena_;
};

}  // namespace dorvane::ado
