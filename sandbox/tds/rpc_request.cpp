#include "sandbox/tds/rpc_request.h"

#include <algorithm>

#include "sandbox/tds/request_header.h"
#include "sandbox/tds/type_decoder.h"
#include "sandbox/text/utf16.h"

namespace sandbox::tds {

namespace {

constexpr std::uint16_t kByNumber = 0xFFFF;

// Numbers of the procedures that drivers call without their name, from 1.
constexpr const char* kNumbered[] = {"sp_cursor",        "sp_cursoropen",     "sp_cursorprepare",
                                     "sp_cursorexecute", "sp_cursorprepexec", "sp_cursorunprepare",
                                     "sp_cursorfetch",   "sp_cursoroption",   "sp_cursorclose",
                                     "sp_executesql",    "sp_prepare",        "sp_execute",
                                     "sp_prepexec",      "sp_prepexecrpc",    "sp_unprepare"};

/// Between two calls of one message; no parameter's name is that long.
bool IsSeparator(std::uint8_t byte) {
  return byte == 0xFF || byte == 0xFE || byte == 0x80;
}

std::string ReadProcedure(ByteReader& reader) {
  std::uint16_t length = reader.U16();
  if (length != kByNumber) return Utf16ToUtf8(reader.Bytes(2U * length));
  std::uint16_t number = reader.U16();
  if (number < 1 || number > std::size(kNumbered)) {
    throw ProtocolError("a procedure's number is unknown");
  }
  return kNumbered[number - 1];
}

Parameter ReadParameter(ByteReader& reader) {
  Parameter parameter;
  parameter.name = Utf16ToUtf8(reader.Bytes(2U * reader.U8()));
  reader.U8();  // flags: nothing here has output parameters
  WireType type = ReadTypeInfo(reader);
  parameter.type = DeclaredType(type);
  parameter.value = ReadValue(reader, type, LongForm::InParameter);
  return parameter;
}

}  // namespace

std::vector<RpcRequest> ReadRpcRequests(ByteReader& reader) {
  SkipAllHeaders(reader);
  std::vector<RpcRequest> requests;
  while (!reader.AtEnd()) {
    RpcRequest& request = requests.emplace_back();
    request.procedure = ReadProcedure(reader);
    reader.U16();  // options: recompile, or leave out the metadata; both may be ignored
    while (!reader.AtEnd() && !IsSeparator(reader.Peek())) {
      request.parameters.push_back(ReadParameter(reader));
    }
    if (!reader.AtEnd()) reader.U8();
  }
  return requests;
}

std::vector<std::string> DeclaredParameterNames(std::string_view declarations) {
  std::vector<std::string> names;
  int depth = 0;
  bool expecting = true;
  for (std::size_t at = 0; at < declarations.size(); ++at) {
    const char c = declarations[at];
    depth += (c == '(') - (c == ')');
    if (c == ',' && depth == 0) expecting = true;
    if (c != '@' || !expecting) continue;
    std::size_t end = std::min(declarations.find_first_of(" \t\r\n,", at), declarations.size());
    names.emplace_back(declarations.substr(at, end - at));
    expecting = false;
  }
  return names;
}

}  // namespace sandbox::tds
