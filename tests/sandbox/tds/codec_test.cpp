#include <gtest/gtest.h>

#include "sandbox/tds/temporal.h"
#include "sandbox/tds/type_decoder.h"
#include "sandbox/tds/value_encoder.h"
#include "sandbox/text/code_page.h"
#include "sandbox/text/utf16.h"
#include "tests/sandbox/tds/sample_values.h"

namespace sandbox::tds {

namespace {

/// Writes a value as a result's column and reads it back as a bulk load's.
Value RoundTrip(const TypeInfo& type, const Value& value, TypeInfo* declared = nullptr) {
  WireType wire = MakeWireType(type);
  ByteWriter out;
  WriteTypeInfo(out, wire);
  ValueEncoder(wire).Write(out, value);
  ByteReader reader(out.bytes());
  WireType read = ReadTypeInfo(reader);
  if (declared != nullptr) *declared = DeclaredType(read);
  Value result = ReadValue(reader, read, LongForm::InRow);
  EXPECT_TRUE(reader.AtEnd());
  return result;
}

TEST(ValueCodec, KeepsEveryTypeAndValueAndItsNull) {
  for (const SampleValue& sample : SampleValues()) {
    if (sample.type.type == SqlType::Variant) continue;  // clients send none
    SCOPED_TRACE(sample.name);
    TypeInfo declared;
    EXPECT_TRUE(SameValue(RoundTrip(sample.type, sample.value, &declared), sample.value));
    EXPECT_TRUE(SameValue(RoundTrip(sample.type, {}), {}));
    if (sample.type.type == SqlType::Timestamp) continue;  // travels as binary(8)
    EXPECT_EQ(declared.type, sample.type.type);
    EXPECT_EQ(declared.length, sample.type.length);
    EXPECT_EQ(declared.precision, sample.type.precision);
    EXPECT_EQ(declared.scale, sample.type.scale);
  }
}

TEST(ValueCodec, FixedTypesArePaddedAndNothingExceedsItsColumn) {
  using enum SqlType;
  EXPECT_TRUE(SameValue(RoundTrip({Char, 4}, std::string("ab")), std::string("ab  ")));
  EXPECT_TRUE(SameValue(RoundTrip({NChar, 3}, std::string("ab")), std::string("ab ")));
  EXPECT_TRUE(SameValue(RoundTrip({Binary, 2}, BinaryValue{"\x01"}),
                        BinaryValue{std::string("\x01\0", 2)}));
  EXPECT_TRUE(SameValue(RoundTrip({VarChar, 2}, std::string("abc")), std::string("ab")));
}

TEST(ValueCodec, AValueOfAnotherKindIsRefused) {
  ByteWriter out;
  ValueEncoder encoder(MakeWireType({SqlType::Int}));
  EXPECT_THROW(encoder.Write(out, std::string("5")), std::bad_variant_access);
}

TEST(TextCodec, ReplacesOnlyWhatHasNoCounterpart) {
  EXPECT_EQ(ToCodePage("\u20ac\u00e4"), "\x80\xE4");
  EXPECT_EQ(ToCodePage("a\u65e5b\U0001F642c"), "a?b?c");
  // The codes that Windows leaves unused survive both ways.
  for (std::string code : {"\x81", "\x8D", "\x8F", "\x90", "\x9D"}) {
    EXPECT_EQ(ToCodePage(FromCodePage(code)), code);
  }
  std::string utf16;
  AppendUtf16("a\xFFz", utf16);
  EXPECT_EQ(Utf16ToUtf8(utf16), "a\uFFFDz");
  const std::string lone_surrogate("\x3D\xD8z\0", 4);
  EXPECT_EQ(Utf16ToUtf8(lone_surrogate), "\uFFFDz");
  EXPECT_EQ(Utf16ToUtf8("a"), "\uFFFD");  // half a character
  std::string long_text = LongText(100'000);
  utf16.clear();
  AppendUtf16(long_text, utf16);
  EXPECT_EQ(Utf16ToUtf8(utf16), long_text);
}

TEST(TextCodec, PiecesMayBeCutAnywhere) {
  const std::string text =
      "plain text, then \u00e9\u20ac\u65e5 \U0001F642\U0001F642 and more plain text";
  std::string utf16;
  AppendUtf16(text, utf16);
  for (std::size_t cut = 0; cut <= utf16.size(); ++cut) {
    Utf16Decoder decoder;
    std::string utf8;
    for (const std::string& piece : {utf16.substr(0, cut), utf16.substr(cut, 1),
                                     utf16.substr(std::min(cut + 1, utf16.size()))}) {
      decoder.Append(piece, utf8);
    }
    decoder.Finish(utf8);
    EXPECT_EQ(utf8, text) << cut;
  }
  Utf16Decoder decoder;
  std::string utf8;
  decoder.Append(std::string_view("a\0\x3D\xD8", 4), utf8);
  decoder.Finish(utf8);
  EXPECT_EQ(utf8, "a\uFFFD") << "half a pair at the end";
}

TEST(Temporal, ThreeHundredthsRoundIntoTheNextDay) {
  const LegacyDateTime rounded = ToLegacy({kDaysTo1900, kTicksPerDay - 1, 0});
  EXPECT_EQ(rounded.days, 1);
  EXPECT_EQ(rounded.three_hundredths, 0U);
  // Milliseconds end in 0, 3 or 7, and come back as they went.
  for (std::int64_t milliseconds : {0, 3, 7, 10, 997}) {
    const DateTimeValue moment{kDaysTo1900 - 1, milliseconds * 10'000, 0};
    EXPECT_EQ(FromLegacy(ToLegacy(moment)).ticks, moment.ticks);
    EXPECT_EQ(FromLegacy(ToLegacy(moment)).days, moment.days);
  }
}

}  // namespace
}  // namespace sandbox::tds
