#include "endpoint/literal_text.h"

#include <gtest/gtest.h>

namespace dorvane {

namespace {

TEST(LiteralText, HexCodesAndDefaults) {
  EXPECT_EQ(HexCode(std::string_view("\x0A\xFF\x00", 3)), "0x0AFF00");
  EXPECT_EQ(HexCode(""), "0x");
  EXPECT_EQ(HexCode(BinaryDefaultBytes("0x0aFf")), "0x0AFF");
  EXPECT_EQ(HexCode(BinaryDefaultBytes("0xF")), "0x0F");
  EXPECT_EQ(HexCode(BinaryDefaultBytes("0xyz")), HexCode("0xyz"));
  EXPECT_EQ(HexCode(GuidBytes("{6F9619FF-8B86-D011-B42D-00C04FC964FF}")),
            "0x6F9619FF8B86D011B42D00C04FC964FF");
  EXPECT_EQ(HexCode(GuidBytes("6F9619FF-8B86-D011-B42D-00C04FC964FF")), "0x00");
}

}  // namespace
}  // namespace dorvane
