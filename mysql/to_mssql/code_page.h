#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

/// The characters that a server's column of chars or varchars holds, by its collation.
class CodePage {
 public:
  /// By the number that the server gives it. One that the system does not know takes every text.
  explicit CodePage(int number);
  ~CodePage();
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;

  /// True when it has each character of the UTF-8 text.
  bool Takes(std::string_view utf8) const;

 private:
  const bool is_ansi_;  // whose unassigned codes are characters as well
  void* const converter_;
};

/// One for each column; null for one that holds every text.
using CodePages = std::vector<std::shared_ptr<const CodePage>>;

/// True for char, varchar and text, in the server's words.
bool IsOfCodePage(std::string_view type);

/// Of a collation, or of the database's own, in an SQL expression; null for one that has every
/// character, or of which the server does not tell. Throws RunTimeError.
std::shared_ptr<const CodePage> PageOfCollation(ado::Connection& server,
                                                const std::string& expression);

}  // namespace dorvane::to_mssql
