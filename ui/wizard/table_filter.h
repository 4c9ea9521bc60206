#pragma once

#include <QRegularExpression>
#include <QString>
#include <string>
#include <vector>

#include "endpoint/database.h"

namespace dorvane {

/// Which names a person wants to see. Parts are separated by commas: a part with * or ? is a
/// pattern of the whole name, any other one stands somewhere in it. Letter case does not matter.
class TableFilter {
 public:
  explicit TableFilter(const QString& text = {});

  bool IsEmpty() const { return parts_.empty(); }
  bool Matches(const std::string& name) const;
  NameList Of(const NameList& names) const;

 private:
  std::vector<QRegularExpression> parts_;
};

}  // namespace dorvane
