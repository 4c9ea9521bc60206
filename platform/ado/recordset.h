#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/provider.h"
#include "platform/ado/row_block.h"
#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane::ado {

class Connection;

/// A field of the current row: a handle, valid until its recordset steps to another result.
class Field {
 public:
  /// The current row's value; text and bytes are valid until the recordset moves. Throws
  /// RunTimeError kNoCurrentRecord before a row is there.
  const ado::Value& Value() const;
  /// The value as text: see ToText.
  std::string Text() const;
  bool IsNull() const { return ado::IsNull(Value()); }

  /// Of a row begun by AddNew. A field that is not set stays NULL.
  void SetNull();
  void SetText(std::string_view text);
  /// Appends to the bytes of the field; the first call replaces a text that was set.
  void AppendChunk(std::string_view bytes);

 private:
  friend class Recordset;
  ado::Value PendingValue() const;

  const FieldInfo* info_ = nullptr;
  const ado::Value* value_ = nullptr;  // set by the recordset for each row
  // The pending value of a row begun by AddNew.
  enum class Pending { None, Text, Bytes } pending_ = Pending::None;
  std::string pending_value_;
};

/// Rows from a server, or rows on their way into a table. A reading recordset is on its first
/// row after it was opened; it holds one block of rows, never the whole result, and asks the server
/// for the first one when it is first looked at. Move-only; closing or destroying it early cancels
/// the statement. Throws RunTimeError kObjectClosed once it, or its connection, was closed.
class Recordset {
 public:
  Recordset(Connection& connection, std::unique_ptr<ResultReader> reader);
  Recordset(Connection& connection, std::unique_ptr<TableWriter> writer,
            const std::vector<std::string>& columns);
  Recordset(Recordset&&) noexcept;
  Recordset& operator=(Recordset&&) noexcept;
  ~Recordset();

  const std::vector<FieldInfo>& FieldInfos() const;
  std::size_t FieldCount() const;
  /// By name the comparison ignores case; an unknown name throws RunTimeError kItemNotFound.
  ado::Field& Field(std::string_view name);
  ado::Field& Field(std::size_t index);

  /// True behind the last row (and for a statement without rows).
  bool AtEnd() const;
  void MoveNext();
  /// Steps to the next result of the statement; false when there is none.
  bool NextRecordset();
  /// Instead of row by row: the next rows as a block, at least one; false at the end. Not to be
  /// mixed with Field and MoveNext. May run in another thread (see Connection).
  bool GetRows(RowBlock& block);

  /// Row by row into a table: AddNew, then set fields, then Update (stores) or CancelUpdate. A row
  /// that Update failed to store stays pending: it may be changed and tried again.
  void AddNew();
  void Update();
  void CancelUpdate();
  /// Whether InsertRows takes the row as it is; see TableWriter.
  bool TakesRow(std::span<const ado::Value> row) const;
  /// Rows in the order of the columns, with values as TableWriter takes them; more than one inside
  /// a transaction.
  void InsertRows(const RowBlock& rows, std::size_t first, std::size_t count);

  void Close();

 private:
  struct State;
  State& Opened() const;
  State& Reading() const;
  State& Writing() const;
  State& Adding() const;

  std::unique_ptr<State> state_;
};

}  // namespace dorvane::ado
