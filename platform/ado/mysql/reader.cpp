#include "platform/ado/mysql/reader.h"

#include <mariadb/mysqld_error.h>

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/ado/mysql/catalog.h"
#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/metadata.h"
#include "platform/ado/mysql/session.h"
#include "platform/ado/mysql/types.h"

namespace dorvane::ado::mysql {

namespace {

/// Where the client library puts one field of the current row. Long values stay in the library's
/// packet until their length is known and they are fetched into the block itself.
struct Slot {
  enum class Kind { Signed, Unsigned, Single, Double, Decimal, Bit, Text, Bytes, Moment };

  Kind kind = Kind::Text;
  unsigned long length = 0;
  my_bool is_null = 0;
  my_bool is_truncated = 0;
  union {
    std::int64_t signed_number;
    std::uint64_t unsigned_number;
    float single_number;
    double double_number;
  };
  MYSQL_TIME moment = {};
};

Slot::Kind KindOf(const MYSQL_FIELD& field, const FieldInfo& info) {
  const bool is_unsigned = (field.flags & UNSIGNED_FLAG) != 0;
  switch (field.type) {
    case MYSQL_TYPE_TINY:
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_INT24:
    case MYSQL_TYPE_LONG:
    case MYSQL_TYPE_LONGLONG:
      return is_unsigned ? Slot::Kind::Unsigned : Slot::Kind::Signed;
    case MYSQL_TYPE_YEAR:
      return Slot::Kind::Signed;
    case MYSQL_TYPE_FLOAT:
      return Slot::Kind::Single;
    case MYSQL_TYPE_DOUBLE:
      return Slot::Kind::Double;
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
      return Slot::Kind::Decimal;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_NEWDATE:
    case MYSQL_TYPE_TIME:
    case MYSQL_TYPE_DATETIME:
    case MYSQL_TYPE_TIMESTAMP:
      return Slot::Kind::Moment;
    default:
      break;
  }
  if (info.type == DataType::Boolean) return Slot::Kind::Bit;
  return IsBinary(info.type) ? Slot::Kind::Bytes : Slot::Kind::Text;
}

MYSQL_BIND BindOf(Slot& slot, enum_field_types wire_type) {
  MYSQL_BIND bind = {};
  bind.length = &slot.length;
  bind.is_null = &slot.is_null;
  bind.error = &slot.is_truncated;
  switch (slot.kind) {
    case Slot::Kind::Signed:
    case Slot::Kind::Unsigned:
      bind.buffer_type = MYSQL_TYPE_LONGLONG;
      bind.buffer = &slot.signed_number;
      bind.is_unsigned = slot.kind == Slot::Kind::Unsigned;
      break;
    case Slot::Kind::Single:
      bind.buffer_type = MYSQL_TYPE_FLOAT;
      bind.buffer = &slot.single_number;
      break;
    case Slot::Kind::Double:
      bind.buffer_type = MYSQL_TYPE_DOUBLE;
      bind.buffer = &slot.double_number;
      break;
    case Slot::Kind::Moment:
      bind.buffer_type = wire_type == MYSQL_TYPE_NEWDATE ? MYSQL_TYPE_DATE : wire_type;
      bind.buffer = &slot.moment;
      bind.buffer_length = sizeof slot.moment;
      break;
    default:
      bind.buffer_type = MYSQL_TYPE_STRING;
      break;
  }
  return bind;
}

DateTime DateTimeOf(const MYSQL_TIME& moment, DataType type) {
  DateTime value;
  if (type != DataType::DBTime) {
    value.year = static_cast<std::int16_t>(moment.year);
    value.month = static_cast<std::uint8_t>(moment.month);
    value.day = static_cast<std::uint8_t>(moment.day);
  }
  // A time beyond a day may come as days and hours.
  const unsigned days = type == DataType::DBTime ? moment.day : 0;
  const unsigned hours = days * 24 + moment.hour;
  const int sign = moment.neg != 0 ? -1 : 1;
  value.seconds = sign * static_cast<int>((hours * 60 + moment.minute) * 60 + moment.second);
  value.nanoseconds = sign * static_cast<int>(moment.second_part) * 1000;
  return value;
}

/// A prepared statement and its results.
class StatementReader final : public ResultReader {
 public:
  StatementReader(ClientSession& session, Statement statement)
      : session_(session), client_(statement->mysql), statement_(std::move(statement)) {
    // The catalog is asked on the same connection: before rows are on their way.
    const Result metadata(mysql_stmt_result_metadata(statement_.get()));
    if (metadata != nullptr) ShowFields(metadata.get());
    if (mysql_stmt_execute(statement_.get()) != 0) Fail();
    BeginResult(metadata == nullptr);
  }

  ~StatementReader() override {
    if (streaming_) session_.Abandon();
  }

  const std::vector<FieldInfo>& Fields() const override { return infos_; }

  bool Read(RowBlock& block) override {
    block.Clear(infos_.size());
    while (has_rows_ && (block.Rows() == 0 || !block.IsFull())) FetchRow(block);
    return block.Rows() > 0;
  }

  bool NextResult() override {
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

 private:
  [[noreturn]] void Fail() {
    has_rows_ = false;
    SetStreaming(false);
    ThrowError(statement_.get(), client_);
  }

  void SetStreaming(bool streaming) {
    streaming_ = streaming;
    session_.SetStreaming(streaming);
  }

  void ShowFields(MYSQL_RES* metadata, bool ask_catalog = true) {
    const MYSQL_FIELD* fields = mysql_fetch_fields(metadata);
    const std::size_t count = mysql_num_fields(metadata);
    infos_ =
        DescribeFields(fields, count, [&](const std::string& database, const std::string& table) {
          if (!ask_catalog) return std::vector<Column>();
          return ReadColumns(session_.Link(), database, table);
        });
    slots_.assign(count, {});
    binds_.clear();
    for (std::size_t i = 0; i < count; ++i) {
      slots_[i].kind = KindOf(fields[i], infos_[i]);
      binds_.push_back(BindOf(slots_[i], fields[i].type));
    }
  }

  /// The statement stands on a result, which may be one without fields.
  void BeginResult(bool describe) {
    if (mysql_stmt_field_count(statement_.get()) != 0) {
      if (describe) {
        const Result metadata(mysql_stmt_result_metadata(statement_.get()));
        if (metadata == nullptr) Fail();
        ShowFields(metadata.get(), false);
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
    // Truncation is what the slots of long values mean to get.
    if (status != 0 && status != MYSQL_DATA_TRUNCATED) Fail();
    const std::span<Value> row = block.AppendRow();
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (slots_[i].is_null == 0) row[i] = Decode(i, block.Storage());
    }
  }

  Value Decode(std::size_t index, Arena& storage) {
    const Slot& slot = slots_[index];
    switch (slot.kind) {
      case Slot::Kind::Signed:
        return slot.signed_number;
      case Slot::Kind::Unsigned:
        return slot.unsigned_number;
      case Slot::Kind::Single:
        return slot.single_number;
      case Slot::Kind::Double:
        return slot.double_number;
      case Slot::Kind::Moment:
        return DateTimeOf(slot.moment, infos_[index].type);
      case Slot::Kind::Decimal:
        return ado::Decimal{Fetch(index, storage)};
      case Slot::Kind::Bytes:
        return ado::Binary{Fetch(index, storage)};
      case Slot::Kind::Bit:
        return Fetch(index, storage).find_first_not_of('\0') != std::string_view::npos;
      case Slot::Kind::Text:
        break;
    }
    return Fetch(index, storage);
  }

  std::string_view Fetch(std::size_t index, Arena& storage) {
    unsigned long length = slots_[index].length;
    if (length == 0) return {};
    char* bytes = storage.Allocate(length);
    my_bool is_null = 0;
    my_bool is_truncated = 0;
    MYSQL_BIND bind = {};
    bind.buffer_type = MYSQL_TYPE_STRING;
    bind.buffer = bytes;
    bind.buffer_length = length;
    bind.length = &length;
    bind.is_null = &is_null;
    bind.error = &is_truncated;
    if (mysql_stmt_fetch_column(statement_.get(), &bind, static_cast<unsigned>(index), 0) != 0) {
      Fail();
    }
    return {bytes, length};
  }

  ClientSession& session_;
  MYSQL* client_;
  Statement statement_;
  std::vector<FieldInfo> infos_;
  std::vector<Slot> slots_;
  std::vector<MYSQL_BIND> binds_;
  bool has_rows_ = false;
  bool streaming_ = false;
};

/// The result of a statement that can't be prepared.
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
