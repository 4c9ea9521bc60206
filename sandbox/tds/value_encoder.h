#pragma once

#include "sandbox/tds/byte_writer.h"
#include "sandbox/tds/wire_type.h"
#include "sandbox/values/types.h"

namespace sandbox::tds {

/// Writes values of one wire type.
class ValueEncoder {
 public:
  explicit ValueEncoder(const WireType& type);
  const WireType& Type() const { return type_; }

  /// Throws std::bad_variant_access, with part of the value written, when the value is of a kind
  /// that the type cannot hold.
  void Write(ByteWriter& out, const Value& value) const {
    if (IsNull(value)) {
      WriteNull(out);
    } else {
      encode_(out, type_, value);
    }
  }

  using Encode = void (*)(ByteWriter& out, const WireType& type, const Value& value);

 private:
  void WriteNull(ByteWriter& out) const;

  WireType type_;
  Encode encode_;
};

}  // namespace sandbox::tds
