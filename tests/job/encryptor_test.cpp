#include "job/encryptor.h"

#include <gtest/gtest.h>

namespace dorvane {

namespace {

TEST(Encryptor, ScramblesLettersAndDigitsOnly) {
  const Encryptor encryptor;
  EXPECT_EQ(encryptor.Encrypt("Ab9 x"), "\xC0\xDB\xFD\x20\xF1");
  EXPECT_EQ(encryptor.Encrypt("AZaz09"), "\xC0\xD9\xDA\xF3\xF4\xFD");
  EXPECT_EQ(encryptor.Encrypt("-_!;'\x80"), "-_!;'\x80");
  EXPECT_EQ(encryptor.Encrypt(""), "");
}

TEST(Encryptor, ComesBackForEveryCodeItDoesNotUseItself) {
  const Encryptor encryptor;
  std::string plain;
  for (int code = 0; code < 192; ++code) plain.push_back(static_cast<char>(code));
  plain += "\xFE\xFF";
  EXPECT_EQ(encryptor.Decrypt(encryptor.Encrypt(plain)), plain);
  EXPECT_EQ(encryptor.Decrypt("\xC0\xD9\xDA\xF3\xF4\xFD"), "AZaz09");
}

}  // namespace
}  // namespace dorvane
