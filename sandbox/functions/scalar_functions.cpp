#include "sandbox/functions/scalar_functions.h"

#include <array>
#include <random>

#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace scalar {

std::string Text(Call call, std::size_t i) {
  return std::get<std::string>(Convert(call.values[i], call.types[i], kLongText));
}

std::int64_t Integer(Call call, std::size_t i) {
  return std::get<std::int64_t>(Convert(call.values[i], call.types[i], BigIntType()));
}

TypeInfo ReturnInt(Types) {
  return IntType();
}

std::string TrimRight(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace scalar

namespace {

using namespace scalar;

TypeInfo ReturnGuid(Types) {
  return {SqlType::UniqueIdentifier, 0, 0, 0};
}

Value NewId(Call) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  GuidValue guid{};
  for (unsigned char& byte : guid.bytes) byte = static_cast<unsigned char>(random());
  guid.bytes[6] = static_cast<unsigned char>((guid.bytes[6] & 0x0F) | 0x40);
  guid.bytes[8] = static_cast<unsigned char>((guid.bytes[8] & 0x3F) | 0x80);
  return guid;
}

const std::array kOtherFunctions{
    ScalarFunction{"newid", 0, 0, ReturnGuid, NewId},
    ScalarFunction{"newsequentialid", 0, 0, ReturnGuid, NewId},
};

const std::vector<ScalarFunction>& AllFunctions() {
  static const std::vector<ScalarFunction> all = [] {
    std::vector<ScalarFunction> functions(kOtherFunctions.begin(), kOtherFunctions.end());
    for (const auto group : {TextFunctions(), MathFunctions(), DateFunctions()}) {
      functions.insert(functions.end(), group.begin(), group.end());
    }
    return functions;
  }();
  return all;
}

}  // namespace

std::optional<std::size_t> FindFunction(std::string_view name) {
  const std::vector<ScalarFunction>& functions = AllFunctions();
  for (std::size_t i = 0; i < functions.size(); ++i) {
    if (name == functions[i].name) return i;
  }
  return std::nullopt;
}

const ScalarFunction& Function(std::size_t position) {
  return AllFunctions().at(position);
}

}  // namespace sandbox
