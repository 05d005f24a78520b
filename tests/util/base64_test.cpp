#include "UTIL/base64.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string encode_bytes(const char* bytes, int count) {
  return base64_encode(reinterpret_cast<const unsigned char*>(bytes), count);
}

TEST(Base64, EncodesWithPaddingAndDecodeInvertsIt) {
  EXPECT_EQ(encode_bytes("Ma", 2), "TWE=");
  EXPECT_EQ(encode_bytes("M", 1), "TQ==");
  EXPECT_EQ(encode_bytes("Many", 4), "TWFu");  // only three bytes count
  EXPECT_EQ(encode_bytes("\xff\xfe\xfd", 3), "//79");
  EXPECT_EQ(std::string(base64_encode(0xab4d616eUL, 24)), "TWFu");  // low 24 bits

  for (unsigned long value : {0x0UL, 0x1UL, 0x4d616eUL, 0x800000UL, 0xfbefbeUL, 0xffffffUL})
    EXPECT_EQ(base64_decode(base64_encode(value, 24)), value);
  // "=" and foreign characters count as 0; a short text stops at its end.
  EXPECT_EQ(base64_decode("T*W!"), (19UL << 18) | (22UL << 6));
  EXPECT_EQ(base64_decode("TW"), 0x4d6000UL);
}

}  // namespace
