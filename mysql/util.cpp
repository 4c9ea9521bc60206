#include "mysql/util.h"

namespace dorvane {

std::string Util::ReplaceDashes(std::string& text) const {
  bool opens = true;
  for (char& c : text) {
    if (c != '`') continue;
    c = opens ? '[' : ']';
    opens = !opens;
  }
  return text;
}

}  // namespace dorvane
