#include <algorithm>
#include <charconv>
#include <vector>

#include "sandbox/text/text_order.h"
#include "sandbox/values/datetime_text.h"
#include "sandbox/values/ticks.h"

namespace sandbox {

namespace {

// One run of digits, one word or one mark of a date's text.
struct Piece {
  enum class Kind { Number, Word, Mark } kind;
  std::string_view text;
  bool after_blank = false;
  int Number() const {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
  }
  bool IsMark(char c) const { return kind == Kind::Mark && text.front() == c; }
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
  return (c | 32) >= 'a' && (c | 32) <= 'z';
}

std::vector<Piece> Split(std::string_view text) {
  std::vector<Piece> pieces;
  bool blank = false;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == ' ' || text[i] == '\t') {
      blank = true;
      ++i;
      continue;
    }
    const auto run = [&](auto accepts) {
      std::size_t end = i;
      while (end < text.size() && accepts(text[end])) ++end;
      return end;
    };
    Piece::Kind kind = Piece::Kind::Mark;
    std::size_t end = i + 1;
    if (IsDigit(text[i])) {
      kind = Piece::Kind::Number;
      end = run(IsDigit);
    } else if (IsLetter(text[i])) {
      kind = Piece::Kind::Word;
      end = run(IsLetter);
    }
    pieces.push_back({kind, text.substr(i, end - i), blank});
    blank = false;
    i = end;
  }
  return pieces;
}

int FullYear(const Piece& piece) {
  const int year = piece.Number();
  if (piece.text.size() > 2) return year;
  return year < 50 ? 2000 + year : 1900 + year;
}

// Takes a date and a time off a row of pieces.
class DateReader {
 public:
  explicit DateReader(std::vector<Piece> pieces) : pieces_(std::move(pieces)) {}

  ParsedDateTime Read() {
    ParsedDateTime result;
    CivilDate date{1900, 1, 1};
    const bool time_first = IsTimeAt(0);
    if (!time_first && !pieces_.empty()) {
      if (!ReadDate(date)) return Failed(DateProblem::Syntax);
      result.has_date = true;
    }
    if (At() && (At()->kind == Piece::Kind::Word) && SameName(At()->text, "T")) ++position_;
    if (At() && !ReadTime()) return Failed(DateProblem::Syntax);
    if (At()) return Failed(DateProblem::Syntax);
    const bool valid = date.year >= 1 && date.year <= 9999 && date.month >= 1 && date.month <= 12 &&
                       date.day >= 1 && date.day <= DaysInMonth(date.year, date.month) &&
                       hour_ < 24 && minute_ < 60 && second_ < 60;
    if (!valid) return Failed(DateProblem::Range);
    result.value.days = static_cast<std::int32_t>(FromCivil(date));
    result.value.ticks = ((hour_ * 60 + minute_) * 60 + second_) * kTicksPerSecond + fraction_;
    result.value.offset_minutes = static_cast<std::int16_t>(offset_);
    return result;
  }

 private:
  static ParsedDateTime Failed(DateProblem problem) {
    ParsedDateTime result;
    result.problem = problem;
    return result;
  }

  const Piece* At(std::size_t ahead = 0) const {
    return position_ + ahead < pieces_.size() ? &pieces_[position_ + ahead] : nullptr;
  }
  bool IsNumber(std::size_t ahead) const {
    return At(ahead) && At(ahead)->kind == Piece::Kind::Number;
  }
  bool IsMark(std::size_t ahead, char mark) const { return At(ahead) && At(ahead)->IsMark(mark); }
  bool IsTimeAt(std::size_t ahead) const { return IsNumber(ahead) && IsMark(ahead + 1, ':'); }

  bool ReadDate(CivilDate& date) {
    if (!IsNumber(0)) return false;
    const Piece first = *At();
    const bool separated = IsMark(1, '-') || IsMark(1, '/') || IsMark(1, '.');
    if (separated && IsNumber(2) && IsNumber(4) && IsMark(3, At(1)->text.front())) {
      const Piece second = *At(2), third = *At(4);
      position_ += 5;
      if (first.text.size() == 4) {
        date = {first.Number(), second.Number(), third.Number()};
      } else {
        date = {FullYear(third), first.Number(), second.Number()};
      }
      return first.text.size() <= 4 && second.text.size() <= 2;
    }
    if (first.text.size() == 8 || first.text.size() == 6) {
      const int number = first.Number();
      const int year = number / 10000;
      date = {first.text.size() == 8 ? year
              : year < 50            ? 2000 + year
                                     : 1900 + year,
              number / 100 % 100, number % 100};
      ++position_;
      return true;
    }
    return false;
  }

  bool ReadTime() {
    if (!IsNumber(0) || At()->text.size() > 2) return false;
    hour_ = At()->Number();
    ++position_;
    if (IsMark(0, ':') && !ReadMinutes()) return false;
    return ReadOffset();
  }

  bool ReadMinutes() {
    ++position_;
    if (!IsNumber(0) || At()->text.size() > 2) return false;
    minute_ = At()->Number();
    ++position_;
    if (!IsMark(0, ':')) return true;
    ++position_;
    if (!IsNumber(0) || At()->text.size() > 2) return false;
    second_ = At()->Number();
    ++position_;
    if (!IsMark(0, '.') && !IsMark(0, ':')) return true;
    const bool point = IsMark(0, '.');
    ++position_;
    if (!IsNumber(0) || At()->text.size() > 9) return false;
    std::string digits(At()->text);
    if (!point) digits.insert(0, 3 - std::min<std::size_t>(3, digits.size()), '0');
    digits.resize(8, '0');
    const std::int64_t hundred_millionths = std::stoll(digits);
    fraction_ = (hundred_millionths + 5) / 10;
    if (fraction_ >= kTicksPerSecond) fraction_ = kTicksPerSecond - 1;
    ++position_;
    return true;
  }

  bool ReadOffset() {
    if (At() && At()->kind == Piece::Kind::Word && SameName(At()->text, "Z")) {
      ++position_;
      return true;
    }
    if (!IsMark(0, '+') && !IsMark(0, '-')) return true;
    const int sign = IsMark(0, '-') ? -1 : 1;
    if (!IsNumber(1) || !IsMark(2, ':') || !IsNumber(3)) return false;
    offset_ = sign * (At(1)->Number() * 60 + At(3)->Number());
    position_ += 4;
    return offset_ >= -840 && offset_ <= 840;
  }

  std::vector<Piece> pieces_;
  std::size_t position_ = 0;
  std::int64_t hour_ = 0, minute_ = 0, second_ = 0, fraction_ = 0;
  int offset_ = 0;
};

}  // namespace

ParsedDateTime ParseDateTime(std::string_view text) {
  return DateReader(Split(text)).Read();
}

}  // namespace sandbox
