#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/JpegReader.h"
#include "codecs/JpegWriter.h"
#include "package/MemoryMedia.h"
#include "tests/support/Damage.h"
#include "tests/support/FailingMedia.h"
#include "tests/support/FaultText.h"

namespace NSTambraPacking {
namespace {

using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;
using CBytes = std::vector<std::uint8_t>;

NSBigFilePackage::SharedMedia MediaOf(CBytes bytes) {
  return std::make_shared<NSBigFilePackage::CMemoryMedia>(std::move(bytes));
}

/// A picture with detail everywhere, so that no part of its data can be missed unseen.
CPixels Gradient(std::uint32_t width, std::uint32_t height) {
  CPixels pixels{{width, height}, {}};
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) {
      for (const std::uint32_t value : {x * 3, y * 3, x + y}) {
        pixels.fRGB.push_back(static_cast<std::uint8_t>(value));
      }
    }
  }
  return pixels;
}

CPictureSize SizeOf(const CBytes& bytes) { return CJpegReader().ReadPictureSize(MediaOf(bytes)); }

/// Where the first marker of this code stands.
std::size_t FindMarker(const CBytes& bytes, std::uint8_t code) {
  std::size_t position = 0;
  while (bytes.at(position) != 0xFF || bytes.at(position + 1) != code) ++position;
  return position;
}

TEST(JpegReader, ReadsWhatTheWriterWrote) {
  for (const auto& [width, height] : {std::pair{64U, 64U}, {1U, 1U}, {200U, 90U}}) {
    const CPixels pixels = Gradient(width, height);
    const CBytes bytes = WriteJpeg(pixels, 100);
    EXPECT_EQ(SizeOf(bytes).fWidth, width);
    EXPECT_EQ(SizeOf(bytes).fHeight, height);
    const CPixels read = CJpegReader().ReadPixels(MediaOf(bytes));
    ASSERT_EQ(read.fRGB.size(), pixels.fRGB.size());
    double error = 0;
    for (std::size_t i = 0; i < read.fRGB.size(); ++i) {
      error += std::abs(int{read.fRGB[i]} - int{pixels.fRGB[i]});
    }
    EXPECT_LT(error / static_cast<double>(read.fRGB.size()), 6);
  }
  EXPECT_THROW(WriteJpeg(CPixels{{2, 2}, CBytes(11)}, 90), std::invalid_argument);
  EXPECT_THROW(WriteJpeg(CPixels{}, 90), std::invalid_argument);
}

TEST(JpegReader, RefusesEveryPrefix) {
  const CBytes bytes = WriteJpeg(Gradient(64, 64), 30);
  NSTest::ForEachCut(bytes, [](const CBytes& cut) { EXPECT_THROW(SizeOf(cut), XFormatViolation); });
  CBytes longer = bytes;
  longer.insert(longer.end(), 100, 7);
  EXPECT_EQ(SizeOf(longer).fWidth, 64u);
}

TEST(JpegReader, RefusesDamage) {
  const CBytes bytes = WriteJpeg(Gradient(64, 64), 90);
  const std::size_t frame = FindMarker(bytes, 0xC0);  // length, precision, height, width
  const std::size_t scan = FindMarker(bytes, 0xDA);
  const struct {
    const char* name;
    std::size_t position;
    CBytes change;
    bool isUnsupported;
  } kCases[] = {
      {"no JPEG", 0, {'G', 'I'}, false},
      {"12 bits a sample", frame + 4, {12}, true},
      {"no lines", frame + 5, {0, 0}, false},
      {"more pixels than the file can hold", frame + 5, {0xFF, 0, 0xFF, 0}, false},
      {"more lines than the data", frame + 5, {0, 128}, false},
      {"fewer lines than the data", frame + 5, {0, 32}, false},
      {"lossless", frame + 1, {0xC3}, true},
      {"a marker inside the data", scan + 100, {0xFF, 0xD9}, false},
      {"a restart that was not announced", scan + 100, {0xFF, 0xD3}, false},
  };
  for (const auto& test : kCases) {
    CBytes changed = bytes;
    std::copy(test.change.begin(), test.change.end(),
              changed.begin() + static_cast<std::ptrdiff_t>(test.position));
    if (test.isUnsupported) {
      EXPECT_THROW(SizeOf(changed), XUnsupportedFormat) << test.name;
    } else {
      EXPECT_THROW(SizeOf(changed), XFormatViolation) << test.name;
    }
  }
}

/// A progressive grey picture of one block: the first `scans` of the 128 scans that give each of
/// its 64 coefficients without the lowest bit and then that bit, all zero.
CBytes Progressive(int scans) {
  CBytes bytes{0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0};
  bytes.insert(bytes.end(), 64, 1);
  bytes.insert(bytes.end(), {0xFF, 0xC2, 0, 11, 8, 0, 8, 0, 8, 1, 1, 0x11, 0});
  for (const std::uint8_t table :
       CBytes{0x00, 0x10}) {  // "0" for symbol 0: no difference, end of block
    bytes.insert(bytes.end(), {0xFF, 0xC4, 0, 20, table, 1});
    bytes.insert(bytes.end(), 16, 0);
  }
  for (int i = 0; i < scans; ++i) {
    const auto coefficient = static_cast<std::uint8_t>(i / 2);
    const std::uint8_t approximation = i % 2 == 0 ? 0x01 : 0x10;
    // Its only bit, filled up with ones.
    bytes.insert(bytes.end(), {0xFF, 0xDA, 0, 8, 1, 1, 0, coefficient, coefficient, approximation});
    bytes.push_back(0x7F);
  }
  bytes.insert(bytes.end(), {0xFF, 0xD9});
  return bytes;
}

TEST(JpegReader, BoundsScans) {
  EXPECT_EQ(SizeOf(Progressive(CJpegReader::kMaximumScans)).fWidth, 8u);
  const auto tooMany = [] { SizeOf(Progressive(CJpegReader::kMaximumScans + 1)); };
  EXPECT_EQ(NSTest::FaultText<XFormatViolation>(tooMany), "JPEG picture: too many scans");
}

TEST(JpegReader, PassesFailuresOfTheMediaOn) {
  const CBytes bytes = WriteJpeg(Gradient(300, 300), 100);
  for (const std::uint64_t budget : {0U, 16384U, 32768U}) {
    const auto media = std::make_shared<NSTest::CFailingMedia>(MediaOf(bytes), budget);
    EXPECT_THROW(CJpegReader().ReadPictureSize(media), NSMordel::XRead);
  }
}

}  // namespace
}  // namespace NSTambraPacking
