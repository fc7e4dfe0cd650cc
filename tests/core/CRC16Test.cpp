#include <gtest/gtest.h>
#include <numeric>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/CRC16.h"

namespace {

TEST(CRC16, KnownValuesWholeAndInParts) {
  const std::string_view text = "123456789";
  const std::vector<std::uint8_t> digits(text.begin(), text.end());
  EXPECT_EQ(NSTolbrook::CRC16(digits), 0x31C3);
  EXPECT_EQ(NSTolbrook::CRC16({}), 0);
  EXPECT_EQ(NSTolbrook::CRC16(std::vector<std::uint8_t>{1}), 0x1021);
  const std::span whole(digits);
  const std::uint16_t first = NSTolbrook::CRC16(whole.first(4));
  EXPECT_EQ(NSTolbrook::CRC16(whole.subspan(4), first), 0x31C3);
  std::vector<std::uint8_t> every(256);
  std::iota(every.begin(), every.end(), std::uint8_t{0});
  EXPECT_EQ(NSTolbrook::CRC16(every), 0x7E55);
}

}  // namespace
