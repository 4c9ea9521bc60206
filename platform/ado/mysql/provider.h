#pragma once

#include "platform/ado/provider.h"

namespace dorvane::ado::mysql {

/// How rows are sent: MariaDB's bulk protocol, or INSERT statements of many rows, which every
/// server understands.
enum class BulkProtocol { WhereOffered, Never };

/// MySqlProvider() is one of these that uses the bulk protocol where it can.
class ClientProvider final : public Provider {
 public:
  explicit ClientProvider(BulkProtocol bulk = BulkProtocol::WhereOffered) : bulk_(bulk) {}
  std::unique_ptr<Session> Connect(const ConnectionSettings& settings) override;

 private:
  BulkProtocol bulk_;
};

}  // namespace dorvane::ado::mysql
