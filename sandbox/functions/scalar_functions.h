#pragma once

#include <span>
#include <string>

#include "sandbox/functions/functions.h"

namespace sandbox {

// The scalar functions by what they are about, in files of their own.
std::span<const ScalarFunction> TextFunctions();
std::span<const ScalarFunction> MathFunctions();
std::span<const ScalarFunction> DateFunctions();

/// What their tables and bodies have in common.
namespace scalar {

using Types = std::span<const TypeInfo>;
using Call = const FunctionCall&;

constexpr TypeInfo kLongText{SqlType::NVarChar, -1, 0, 0};

/// An argument as text or a whole number; it must not be NULL.
std::string Text(Call call, std::size_t i);
std::int64_t Integer(Call call, std::size_t i);

TypeInfo ReturnInt(Types types);
/// Without the blanks at its end.
std::string TrimRight(std::string text);

}  // namespace scalar
}  // namespace sandbox
