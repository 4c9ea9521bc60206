#include "platform/ado/rehearsal.h"

#include <algorithm>
#include <array>

#include "platform/text/ascii.h"

namespace dorvane::ado {

namespace {

class NoRows final : public ResultReader {
 public:
  const std::vector<FieldInfo>& Fields() const override { return fields_; }
  bool Read(RowBlock& block) override {
    block.Clear(0);
    return false;
  }
  bool NextResult() override { return false; }

 private:
  const std::vector<FieldInfo> fields_;
};

class Nowhere final : public TableWriter {
 public:
  void Insert(const RowBlock& /*rows*/, std::size_t /*first*/, std::size_t /*count*/) override {}
};

}  // namespace

bool OnlyReads(std::string_view sql) {
  constexpr std::array<std::string_view, 2> kQuestions = {"select ", "show "};
  return std::ranges::any_of(kQuestions, [sql](std::string_view word) {
    return text::EqualsIgnoringCase(sql.substr(0, word.size()), word);
  });
}

std::unique_ptr<ResultReader> NothingToRead() {
  return std::make_unique<NoRows>();
}

std::unique_ptr<TableWriter> NothingToWrite() {
  return std::make_unique<Nowhere>();
}

}  // namespace dorvane::ado
