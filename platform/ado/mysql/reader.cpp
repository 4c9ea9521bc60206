#include "platform/ado/mysql/reader.h"

#include <mariadb/mysqld_error.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "platform/ado/mysql/catalog.h"
#include "platform/ado/mysql/column_buffer.h"
#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/metadata.h"
#include "platform/ado/mysql/session.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::mysql {

namespace {

/// A prepared statement and its results.
class StatementReader final : public ResultReader {
 public:
  StatementReader(ClientSession& session, Statement statement)
      : session_(session), client_(statement->mysql), statement_(std::move(statement)) {
    // The catalog is asked on the same connection: before rows are on their way.
    const Result metadata(mysql_stmt_result_metadata(statement_.get()));
    if (metadata != nullptr) Describe(metadata.get());
    if (mysql_stmt_execute(statement_.get()) != 0) Fail();
    BeginResult(metadata == nullptr);
  }

  ~StatementReader() override {
    if (streaming_) session_.Abandon();
    session_.Close(statement_);
  }

  const std::vector<FieldInfo>& Fields() const override { return infos_; }

  bool Read(RowBlock& block) override {
    block.Clear(infos_.size());
    if (!has_rows_) return false;
    session_.Watch([&] {
      while (has_rows_ && (block.Rows() == 0 || !block.IsFull())) FetchRow(block);
    });
    return block.Rows() > 0;
  }

  bool NextResult() override {
    infos_.clear();
    return streaming_ && session_.Watch([&] { return SeekResult(); });
  }

 private:
  bool SeekResult() {
    for (;;) {
      infos_.clear();
      has_rows_ = false;
      const int status = mysql_stmt_next_result(statement_.get());
      if (status > 0) Fail();
      if (status < 0) {
        SetStreaming(false);
        return false;
      }
      BeginResult(true);
      if (!infos_.empty()) return true;
    }
  }

  [[noreturn]] void Fail() {
    has_rows_ = false;
    SetStreaming(false);
    ThrowError(statement_.get(), client_);
  }

  void SetStreaming(bool streaming) {
    streaming_ = streaming;
    session_.SetStreaming(streaming);
  }

  void Describe(MYSQL_RES* metadata, bool ask_catalog = true) {
    const MYSQL_FIELD* fields = mysql_fetch_fields(metadata);
    const std::size_t count = mysql_num_fields(metadata);
    infos_ =
        DescribeFields(fields, count, [&](const std::string& database, const std::string& table) {
          if (!ask_catalog) return std::vector<Column>();
          return ReadColumns(session_.Link(), database, table);
        });
    columns_.clear();
    for (std::size_t i = 0; i < count; ++i) columns_.emplace_back(fields[i], infos_[i]);
    binds_.clear();
    for (ColumnBuffer& column : columns_) binds_.push_back(column.Bind());
  }

  /// Takes up the result that the statement is at, which may be one without fields.
  void BeginResult(bool describe) {
    if (mysql_stmt_field_count(statement_.get()) != 0) {
      if (describe) {
        const Result metadata(mysql_stmt_result_metadata(statement_.get()));
        if (metadata == nullptr) Fail();
        Describe(metadata.get(), false);
      }
      // The library would read past the bindings of a result with more columns.
      if (mysql_stmt_field_count(statement_.get()) != binds_.size()) {
        throw MalformedPacket("a result with other columns than were announced");
      }
      if (mysql_stmt_bind_result(statement_.get(), binds_.data()) != 0) Fail();
      has_rows_ = true;
    }
    SetStreaming(has_rows_ || mysql_stmt_more_results(statement_.get()) != 0);
  }

  void FetchRow(RowBlock& block) {
    const int status = mysql_stmt_fetch(statement_.get());
    if (status == MYSQL_NO_DATA) {
      has_rows_ = false;
      SetStreaming(mysql_stmt_more_results(statement_.get()) != 0);
      return;
    }
    // The buffers of values without a fixed size truncate on purpose.
    if (status != 0 && status != MYSQL_DATA_TRUNCATED) Fail();
    const std::span<Value> row = block.AppendRow();
    for (std::size_t i = 0; i < row.size(); ++i) {
      row[i] = columns_[i].Convert(statement_.get(), static_cast<unsigned>(i), block.Storage());
    }
  }

  ClientSession& session_;
  MYSQL* client_;
  Statement statement_;
  std::vector<FieldInfo> infos_;
  std::vector<ColumnBuffer> columns_;
  std::vector<MYSQL_BIND> binds_;
  bool has_rows_ = false;
  bool streaming_ = false;
};

/// Statements that give no rows, or texts: they need no types, and cost one trip instead of two.
bool NeedsNoTypes(std::string_view sql) {
  constexpr std::array<std::string_view, 8> kWords = {"alter",  "create", "delete", "drop",
                                                      "insert", "set",    "show",   "update"};
  const std::string_view text = text::Trim(sql, text::kWhiteSpace);
  const std::string_view word = text.substr(0, text.find_first_of(text::kWhiteSpace));
  return std::ranges::any_of(
      kWords, [word](std::string_view each) { return text::EqualsIgnoringCase(word, each); });
}

/// The result of a statement that is not prepared, its values as texts.
class TextReader final : public ResultReader {
 public:
  TextReader(MYSQL* client, std::string_view sql) {
    if (mysql_real_query(client, sql.data(), sql.size()) != 0) ThrowError(client);
    result_.reset(mysql_store_result(client));
    if (result_ == nullptr) {
      if (mysql_field_count(client) != 0) ThrowError(client);
      return;
    }
    const MYSQL_FIELD* fields = mysql_fetch_fields(result_.get());
    for (unsigned i = 0; i < mysql_num_fields(result_.get()); ++i) {
      infos_.push_back({.name = {fields[i].name, fields[i].name_length},
                        .type = DataType::LongVarWChar,
                        .defined_size = static_cast<std::int64_t>(fields[i].length)});
    }
  }

  const std::vector<FieldInfo>& Fields() const override { return infos_; }

  bool Read(RowBlock& block) override {
    block.Clear(infos_.size());
    while (result_ != nullptr && (block.Rows() == 0 || !block.IsFull())) FetchRow(block);
    return block.Rows() > 0;
  }

  bool NextResult() override {
    infos_.clear();
    result_.reset();
    return false;
  }

 private:
  void FetchRow(RowBlock& block) {
    MYSQL_ROW texts = mysql_fetch_row(result_.get());
    if (texts == nullptr) {
      result_.reset();
      return;
    }
    const unsigned long* lengths = mysql_fetch_lengths(result_.get());
    const std::span<Value> row = block.AppendRow();
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (texts[i] != nullptr) row[i] = block.Storage().Store({texts[i], lengths[i]});
    }
  }

  std::vector<FieldInfo> infos_;
  Result result_;
};

}  // namespace

std::unique_ptr<ResultReader> OpenReader(ClientSession& session, std::string_view sql) {
  MYSQL* client = session.Link().client.get();
  if (NeedsNoTypes(sql)) return std::make_unique<TextReader>(client, sql);
  Statement statement(mysql_stmt_init(client));
  if (statement == nullptr) ThrowError(client);
  if (mysql_stmt_prepare(statement.get(), sql.data(), sql.size()) == 0) {
    return std::make_unique<StatementReader>(session, std::move(statement));
  }
  if (mysql_stmt_errno(statement.get()) == ER_UNSUPPORTED_PS) {
    return std::make_unique<TextReader>(client, sql);
  }
  ThrowError(statement.get(), client);
}

}  // namespace dorvane::ado::mysql
