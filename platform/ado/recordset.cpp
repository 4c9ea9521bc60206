#include "platform/ado/recordset.h"

#include <algorithm>
#include <utility>

#include "platform/ado/connection.h"
#include "platform/ado/items.h"

namespace dorvane::ado {

struct Recordset::State final : Connection::Dependent {
  State(Connection& owner, std::unique_ptr<ResultReader> result)
      : connection(&owner), reader(std::move(result)) {
    owner.dependents_.push_back(this);
    SetFields(reader->Fields());
  }

  State(Connection& owner, std::unique_ptr<TableWriter> target,
        const std::vector<std::string>& columns)
      : connection(&owner), writer(std::move(target)) {
    owner.dependents_.push_back(this);
    std::vector<FieldInfo> named(columns.size());
    std::ranges::transform(columns, named.begin(),
                           [](const std::string& name) { return FieldInfo{.name = name}; });
    SetFields(std::move(named));
  }

  State(const State&) = delete;
  State& operator=(const State&) = delete;

  ~State() override {
    if (connection != nullptr) std::erase(connection->dependents_, this);
  }

  void Detach() override {
    reader.reset();
    writer.reset();
    connection = nullptr;
  }

  void SetFields(std::vector<FieldInfo> described) {
    infos = std::move(described);
    fields.assign(infos.size(), {});
    for (std::size_t i = 0; i < infos.size(); ++i) fields[i].info_ = &infos[i];
    started = false;
    at_end = infos.empty();
  }

  void BindFields() {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      fields[i].value_ = at_end ? nullptr : &block.Row(row)[i];
    }
  }

  /// False at the end of the result, and after a failure.
  bool Read(RowBlock& target) {
    if (at_end) {
      target.Clear(infos.size());
      return false;
    }
    at_end = true;
    at_end = !connection->Guarded([&] { return reader->Read(target); });
    return !at_end;
  }

  void NextBlock() {
    row = 0;
    for (ado::Field& field : fields) field.value_ = nullptr;
    if (Read(block)) BindFields();
  }

  void Start() {
    if (started || reader == nullptr) return;
    started = true;
    NextBlock();
  }

  Connection* connection;
  std::unique_ptr<ResultReader> reader;  // of a recordset that reads
  std::unique_ptr<TableWriter> writer;   // of one that writes
  std::vector<FieldInfo> infos;
  std::vector<ado::Field> fields;

  bool started = false;  // whether the first block was asked for
  bool at_end = false;
  RowBlock block;
  std::size_t row = 0;

  bool adding = false;
  RowBlock pending;
};

namespace {

constexpr const char* kSource = "ADODB.Recordset";

[[noreturn]] void Fail(std::int32_t number, const char* description) {
  throw RunTimeError(number, kSource, description);
}

}  // namespace

Recordset::Recordset(Connection& connection, std::unique_ptr<ResultReader> reader)
    : state_(std::make_unique<State>(connection, std::move(reader))) {}

Recordset::Recordset(Connection& connection, std::unique_ptr<TableWriter> writer,
                     const std::vector<std::string>& columns)
    : state_(std::make_unique<State>(connection, std::move(writer), columns)) {}

Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

Recordset::State& Recordset::Opened() const {
  if (state_ == nullptr || state_->connection == nullptr) {
    Fail(kObjectClosed, "Operation is not allowed when the object is closed.");
  }
  return *state_;
}

Recordset::State& Recordset::Reading() const {
  State& state = Opened();
  if (state.reader == nullptr) Fail(kObjectClosed, "The recordset holds no rows of a statement.");
  return state;
}

Recordset::State& Recordset::Writing() const {
  State& state = Opened();
  if (state.writer == nullptr) Fail(kNotUpdatable, "Current recordset does not support updating.");
  return state;
}

Recordset::State& Recordset::Adding() const {
  State& state = Writing();
  if (!state.adding) Fail(kNoCurrentRecord, "No row was begun.");
  return state;
}

const std::vector<FieldInfo>& Recordset::FieldInfos() const {
  return Opened().infos;
}

std::size_t Recordset::FieldCount() const {
  return Opened().infos.size();
}

ado::Field& Recordset::Field(std::size_t index) {
  State& state = Opened();
  if (index >= state.fields.size()) ThrowItemNotFound(kSource);
  state.Start();
  return state.fields[index];
}

ado::Field& Recordset::Field(std::string_view name) {
  const std::vector<FieldInfo>& infos = Opened().infos;
  const FieldInfo& found = FindItem(infos, name, kSource);
  return Field(static_cast<std::size_t>(&found - infos.data()));
}

bool Recordset::AtEnd() const {
  State& state = Reading();
  state.Start();
  return state.at_end;
}

void Recordset::MoveNext() {
  if (AtEnd()) Fail(kNoCurrentRecord, "The recordset is behind its last row.");
  State& state = *state_;
  if (++state.row < state.block.Rows()) {
    state.BindFields();
  } else {
    state.NextBlock();
  }
}

bool Recordset::NextRecordset() {
  State& state = Reading();
  const bool found = state.connection->Guarded([&] { return state.reader->NextResult(); });
  state.SetFields(found ? state.reader->Fields() : std::vector<FieldInfo>());
  return found;
}

bool Recordset::GetRows(RowBlock& block) {
  State& state = Reading();
  state.started = true;
  return state.Read(block);
}

void Recordset::AddNew() {
  State& state = Writing();
  for (ado::Field& field : state.fields) field.SetNull();
  state.adding = true;
}

void Recordset::Update() {
  State& state = Adding();
  state.pending.Clear(state.fields.size());
  std::ranges::transform(state.fields, state.pending.AppendRow().begin(),
                         [](const ado::Field& field) { return field.PendingValue(); });
  InsertRows(state.pending, 0, 1);
  state.adding = false;
}

void Recordset::CancelUpdate() {
  Writing().adding = false;
}

bool Recordset::TakesRow(std::span<const ado::Value> row) const {
  return Writing().writer->Takes(row);
}

void Recordset::InsertRows(const RowBlock& rows, std::size_t first, std::size_t count) {
  State& state = Writing();
  state.connection->Guarded([&] { state.writer->Insert(rows, first, count); });
}

void Recordset::Close() {
  state_.reset();
}

}  // namespace dorvane::ado
