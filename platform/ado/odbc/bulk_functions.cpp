#include "platform/ado/odbc/bulk_functions.h"

#include <sqlext.h>

#include <string_view>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/utf16.h"

namespace dorvane::ado::odbc {

namespace {

/// FreeTDS has its functions behind attributes of the connection, whose values are the functions'
/// parameters.
class FreeTdsBulk final : public BulkFunctions {
 public:
  explicit FreeTdsBulk(SQLHANDLE connection) : connection_(connection) {}

  void Init(const std::u16string& table, bool keeps_identity) override {
    struct Parameters {
      const void* table;
      const void* host_file;
      const void* error_file;
      int direction;
    } parameters{table.c_str(), nullptr, nullptr, kIn};
    Call(kInit, &parameters);
    Control(kHints, kHintTexts.data());
    if (keeps_identity) Control(kKeepIdentity, "yes");
  }

  void Bind(const char* cell, CellType type, int column) override {
    struct Parameters {
      const void* cell;
      int prefix_size;
      int length;
      const void* terminator;
      int terminator_size;
      int type;
      int column;
    } parameters{cell, kPrefixSize, kLengthInPrefix, nullptr, 0, HostType(type), column};
    Call(kBind, &parameters);
  }

  void SendRow() override { Call(kSendRow, nullptr); }

  void Done() override {
    int rows = -1;
    Call(kDone, &rows);
  }

 private:
  // Attributes. The options' own one changed with their numbers when hints became wide text.
  static constexpr SQLINTEGER kControl = 1501;
  static constexpr SQLINTEGER kSendRow = 1503;
  static constexpr SQLINTEGER kDone = 1505;
  static constexpr SQLINTEGER kBind = 1506;
  static constexpr SQLINTEGER kInit = 1507;
  static constexpr SQLINTEGER kNewControl = 1508;

  static constexpr int kIn = 1;
  static constexpr int kPrefixSize = 4;
  static constexpr int kLengthInPrefix = -10;
  static constexpr int kKeepIdentity = 8;
  static constexpr int kHints = 6;
  static constexpr int kNewHints = 10;
  static constexpr std::string_view kHintTexts = "KEEP_NULLS, CHECK_CONSTRAINTS, FIRE_TRIGGERS";

  static int HostType(CellType type) {
    constexpr int kText = 47;
    switch (type) {
      case CellType::Bit:
        return 50;
      case CellType::TinyInt:
        return 48;
      case CellType::SmallInt:
        return 52;
      case CellType::Int:
        return 56;
      case CellType::BigInt:
        return 127;
      case CellType::Real:
        return 59;
      case CellType::Float:
        return 62;
      case CellType::DateTime:
        return 61;
      case CellType::Bytes:
        return 45;
      case CellType::Numeric:  // its own structure loses digits on the way
      case CellType::Moment:
      case CellType::Characters:
        return kText;
    }
    return kText;
  }

  bool TryCall(SQLINTEGER function, void* parameters) {
    return SQL_SUCCEEDED(SQLSetConnectAttrW(connection_, function, parameters, SQL_IS_POINTER));
  }

  void Call(SQLINTEGER function, void* parameters) {
    if (TryCall(function, parameters)) return;
    throw StatementError(ReadDiagnostics(SQL_HANDLE_DBC, connection_));
  }

  void Control(int option, const char* value) {
    struct Parameters {
      int option;
      const void* value;
    } parameters{option, value};
    if (TryCall(kControl, &parameters)) return;
    if (option == kHints) parameters.option = kNewHints;
    Call(kNewControl, &parameters);
  }

  SQLHANDLE connection_;
};

std::string DriverName(SQLHANDLE connection) {
  char16_t name[256] = {};
  SQLSMALLINT length = 0;
  SQLGetInfoW(connection, SQL_DRIVER_NAME, name, sizeof name, &length);
  return ToUtf8(name);
}

}  // namespace

std::unique_ptr<BulkFunctions> FindBulkFunctions(SQLHANDLE connection) {
  const bool is_free_tds = DriverName(connection).find("tdsodbc") != std::string::npos;
  return is_free_tds ? std::make_unique<FreeTdsBulk>(connection) : nullptr;
}

}  // namespace dorvane::ado::odbc
