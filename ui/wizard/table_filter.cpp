#include "ui/wizard/table_filter.h"

#include <algorithm>
#include <iterator>

namespace dorvane {

TableFilter::TableFilter(const QString& text) {
  for (const QString& part : text.split(',', Qt::SkipEmptyParts)) {
    const QString trimmed = part.trimmed();
    if (trimmed.isEmpty()) continue;
    QString pattern = QRegularExpression::escape(trimmed);
    if (trimmed.contains('*') || trimmed.contains('?')) {
      pattern.replace("\\*", ".*").replace("\\?", ".");
      pattern = QRegularExpression::anchoredPattern(pattern);
    }
    parts_.emplace_back(pattern, QRegularExpression::CaseInsensitiveOption |
                                     QRegularExpression::DotMatchesEverythingOption);
  }
}

bool TableFilter::Matches(const std::string& name) const {
  const QString text = QString::fromStdString(name);
  return parts_.empty() || std::ranges::any_of(parts_, [&](const QRegularExpression& part) {
           return part.match(text).hasMatch();
         });
}

NameList TableFilter::Of(const NameList& names) const {
  NameList matching;
  std::ranges::copy_if(names, std::back_inserter(matching),
                       [this](const std::string& name) { return Matches(name); });
  return matching;
}

}  // namespace dorvane
