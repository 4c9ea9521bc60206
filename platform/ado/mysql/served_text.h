#pragma once

#include <string_view>

#include "platform/ado/mysql/client.h"

namespace dorvane::ado::mysql {

/// Gives the server nothing when it asks for a file of this machine, which any server can do at any
/// time: its statement fails. Every client starts so.
void RefuseFiles(MYSQL* client);

/// While it lives, the file that the server asks for is this text, whatever the file's name.
class ServedText {
 public:
  /// `text` outlives this.
  ServedText(MYSQL* client, std::string_view text);
  ~ServedText() { RefuseFiles(client_); }
  ServedText(const ServedText&) = delete;
  ServedText& operator=(const ServedText&) = delete;

 private:
  MYSQL* client_;
  std::string_view rest_;
};

}  // namespace dorvane::ado::mysql
