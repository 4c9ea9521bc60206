#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/definition_statement.h"
#include "endpoint/references.h"
#include "platform/ado/types.h"

namespace dorvane {

/// The tables and foreign keys of the destination while a rehearsal drops and makes some of them:
/// tells what the server would refuse for their sake.
class RehearsedReferences {
 public:
  /// `there` are the keys before the run. `folds`: names that differ in letter case are one.
  RehearsedReferences(ServerKind server, bool is_maria_db, bool folds,
                      std::vector<Reference> there);

  /// A statement that neither drops a key or a table nor makes a table changes nothing. Throws
  /// ProviderError when the server would refuse it.
  void Try(std::string_view sql, const DefinitionStatement& definition);
  /// True for a table that has been dropped, whether or not it was made again.
  bool IsDropped(const ado::TableName& table) const { return dropped_.contains(Folded(table)); }

 private:
  ado::TableName Folded(const ado::TableName& table) const;
  void Drop(const ado::TableName& table);
  void Make(const ado::TableName& table) const;

  const ServerKind server_;
  const bool is_maria_db_;
  const bool folds_;
  std::vector<Reference> there_;
  // Folded.
  std::set<ado::TableName> kept_;  // could not be dropped
  std::set<ado::TableName> dropped_;
};

}  // namespace dorvane
