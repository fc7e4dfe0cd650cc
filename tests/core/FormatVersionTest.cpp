#include <gtest/gtest.h>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FormatVersion.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"

#include "package/MemoryMedia.h"

namespace {

using namespace NSTolbrook;
using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using Bytes = std::vector<std::uint8_t>;

/// The long form of these numbers.
Bytes Long(const std::vector<std::uint32_t>& numbers) {
  Bytes bytes = {0xBC, 0xFF, 0xFF, 0xFF, 0xFF};
  for (const std::uint32_t number : numbers) {
    for (const int shift : {24, 16, 8, 0})
      bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
  return bytes;
}

TEST(FormatVersion, BytesTextAndBack) {
  const struct {
    CFormatVersion fVersion;
    Bytes fBytes;
    const char* fText;
  } cases[] = {
      {{1, 2, 3, 4, 0, 0}, {0xBC, 1, 2, 3, 0}, "1.2.3"},
      {{254, 254, 254, 4, 0, 0}, {0xBC, 254, 254, 254, 0}, "254.254.254"},
      {{255, 0, 0, 4, 0, 0}, Long({255, 0, 0, 4, 0, 0}), "255.0.0"},
      {{1, 2, 0, 4, 7, 0}, Long({1, 2, 0, 4, 7, 0}), "1.2.0f7"},
      {{1, 2, 0, 4, 0, 1}, Long({1, 2, 0, 4, 0, 1}), "1.2.0"},
      {{0x01020304, 0, 1, 3, 0, 0x05060708},
       Long({0x01020304, 0, 1, 3, 0, 0x05060708}),
       "16909060.0.1b0"},
  };
  for (const auto& [version, bytes, text] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(version.Text(), text);
    CMemoryMedia media(Bytes{9, 9});
    CMediaCursor output(media, 2);
    WriteFormatVersion(output, version);
    Bytes expected = {9, 9};
    expected.insert(expected.end(), bytes.begin(), bytes.end());
    EXPECT_EQ(media.Bytes(), expected);
    EXPECT_EQ(output.Position(), expected.size());
    EXPECT_EQ(FormatVersionLength(version), bytes.size());
    CMediaCursor input(media, 2);
    EXPECT_EQ(ReadFormatVersion(input), version);
    EXPECT_EQ(input.Remaining(), 0U);
  }
  EXPECT_LT((CFormatVersion{1, 9, 9, 4, 9, 9}), (CFormatVersion{2, 0, 0, 1, 0, 0}));
  EXPECT_LT((CFormatVersion{1, 2, 0, 3, 9, 0}), (CFormatVersion{1, 2, 0, 4, 0, 0}));
}

TEST(FormatVersion, RefusesFaultyBytes) {
  const auto extended = [](std::uint32_t stage, std::size_t length) {
    Bytes bytes = Long({0, 0, 0, stage, 0, 0});
    bytes.resize(length);
    return bytes;
  };
  for (const Bytes& bytes : {Bytes{}, Bytes{0xBC, 1, 2, 3}, Bytes{0xBB, 1, 2, 3, 0}, extended(4, 5),
                             extended(4, 28), extended(0, 29), extended(5, 29)}) {
    CMemoryMedia media(bytes);
    CMediaCursor input(media);
    EXPECT_THROW(ReadFormatVersion(input), NSMordel::XFormatViolation) << bytes.size();
  }
  for (const std::uint32_t stage : {1U, 4U}) {
    CMemoryMedia media(extended(stage, 29));
    CMediaCursor input(media);
    EXPECT_EQ(ReadFormatVersion(input).fStage, stage);
  }
}

TEST(MediaCursor, MovesOnByWhatItHandles) {
  CMemoryMedia media(Bytes{1, 2, 3, 4, 5});
  CMediaCursor cursor(media, 1);
  Bytes two(2);
  cursor.ReadExactly(two);
  EXPECT_EQ(two, (Bytes{2, 3}));
  Bytes three(3);
  EXPECT_THROW(cursor.ReadExactly(three), NSMordel::XRead);
  EXPECT_EQ(cursor.Position(), 3U);  // a read that fails leaves it
  EXPECT_EQ(cursor.Read(three), 2U);
  EXPECT_EQ(cursor.Position(), 5U);
  cursor.Write(two);
  EXPECT_EQ(media.Bytes(), (Bytes{1, 2, 3, 4, 5, 2, 3}));
  cursor.SetPosition(100);
  EXPECT_EQ(cursor.Remaining(), 0U);
  EXPECT_EQ(cursor.Read(three), 0U);
}

TEST(FourCharCode, ValidityAndText) {
  static_assert(MakeFourCharCode("FORM") == 0x464F524D);
  const struct {
    FourCharCode fCode;
    bool fValid;
    const char* fText;
  } cases[] = {{MakeFourCharCode("FORM"), true, "FORM"},
               {0x21202020, true, "!   "},
               {0x20414243, false, " ABC"},
               {0x4142431F, false, "ABC?"},
               {0x7E7E7E7E, true, "~~~~"},
               {0x7F414243, false, "?ABC"},
               {0x41FF4200, false, "A?B?"}};
  for (const auto& [code, valid, text] : cases) {
    EXPECT_EQ(IsValidFourCharCode(code), valid) << text;
    EXPECT_EQ(FourCharCodeText(code), text);
  }
}

}  // namespace
