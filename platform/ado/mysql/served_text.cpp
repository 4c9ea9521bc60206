#include "platform/ado/mysql/served_text.h"

#include <mariadb/errmsg.h>

#include <algorithm>
#include <cstring>

namespace dorvane::ado::mysql {

namespace {

constexpr std::string_view kRefusal = "The server asked for a file of this machine.";

// The library's callbacks: what the first one stores is handed to the others.

int Refuse(void** handle, const char* /*name*/, void* /*user_data*/) {
  *handle = nullptr;
  return 1;
}

int Begin(void** handle, const char* /*name*/, void* user_data) {
  *handle = user_data;
  return 0;
}

int Read(void* handle, char* buffer, unsigned size) {
  auto* rest = static_cast<std::string_view*>(handle);
  if (rest == nullptr) return -1;
  const std::size_t count = std::min<std::size_t>(size, rest->size());
  std::memcpy(buffer, rest->data(), count);
  rest->remove_prefix(count);
  return static_cast<int>(count);
}

void End(void* /*handle*/) {}

int TellRefusal(void* /*handle*/, char* message, unsigned size) {
  const std::size_t count = std::min<std::size_t>(size - 1, kRefusal.size());
  std::memcpy(message, kRefusal.data(), count);
  message[count] = '\0';
  return CR_UNKNOWN_ERROR;
}

}  // namespace

void RefuseFiles(MYSQL* client) {
  mysql_set_local_infile_handler(client, Refuse, Read, End, TellRefusal, nullptr);
}

ServedText::ServedText(MYSQL* client, std::string_view text) : client_(client), rest_(text) {
  mysql_set_local_infile_handler(client, Begin, Read, End, TellRefusal, &rest_);
}

}  // namespace dorvane::ado::mysql
