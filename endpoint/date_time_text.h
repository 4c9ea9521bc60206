#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ado/value.h"

namespace dorvane {

// Dates of statements. The seconds of a DateTime lie within its day for all but Normalised.

inline constexpr std::size_t kDateTimeSize = 32;  // bytes that the writers below may need
/// "yyyy-mm-dd"
std::size_t WriteDate(char* out, const ado::DateTime& value);
/// "hh:nn:ss", with up to nine fractional digits behind a point (cut, not rounded) on request.
std::size_t WriteTime(char* out, const ado::DateTime& value, int fraction_digits);
/// Both, with a blank between.
std::size_t WriteDateTime(char* out, const ado::DateTime& value, int fraction_digits);
/// "yyyy-mm-dd hh:nn:ss"
std::string DateTimeText(const ado::DateTime& value);
/// A time below zero or beyond a day moves the date.
ado::DateTime Normalised(const ado::DateTime& value);
/// Reads a date, a time (its date is 1899-12-30) or both: yyyy-mm-dd, yyyymmdd or mm/dd/yyyy, then
/// hh:nn, optional seconds and fraction, with a blank or "T" between. The date of all zeros is one.
/// Throws RunTimeError 13.
ado::DateTime ParseDateTime(std::string_view text);

}  // namespace dorvane
