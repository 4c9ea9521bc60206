#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/binder/binder.h"
#include "sandbox/catalog/database_link.h"
#include "sandbox/catalog/requests.h"
#include "sandbox/catalog/server_traits.h"

namespace sandbox {

/// The session as the catalog's views and procedures and the parts of a statement see it.
class Session : public BindContext {
 public:
  virtual DatabaseLink& Link() = 0;
  /// The link to the named database (empty: the current one). Raises 911.
  virtual DatabaseLink& LinkTo(std::string_view database) = 0;
  const std::string& DatabaseName() { return Link().Name(); }
  virtual ServerFolder& Folder() = 0;
  virtual Requests& ServerRequests() = 0;
  virtual const ServerTraits& Traits() const = 0;
  virtual const std::string& Login() const = 0;

  virtual void Message(int number, int severity, int state, std::string text) = 0;
  /// The rows of a result made here, as a procedure makes them.
  virtual void SendRows(const std::vector<ColumnInfo>& columns,
                        const std::vector<std::vector<Value>>& rows) = 0;
  /// A batch within the one that runs, which gets its answers.
  virtual void RunText(std::string_view text) = 0;
  /// The expression's value, converted to `type` if one is given.
  virtual Value Evaluate(const Expr& expr, const TypeInfo* type = nullptr) = 0;
};

}  // namespace sandbox
