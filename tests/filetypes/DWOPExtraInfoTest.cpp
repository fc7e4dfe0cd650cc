#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/DWOPExtraInfo.h"
#include "package/MemoryMedia.h"
#include "tests/support/FaultText.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using CBytes = std::vector<std::uint8_t>;

CBytes BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

CBytes Block(const CBytes& data) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  WriteExtraInfo(cursor, CMemoryMedia(data), {});
  return media.TakeBytes();
}

/// Claims a size and fails when it is read.
class CHugeMedia : public CMemoryMedia {
 public:
  explicit CHugeMedia(std::uint64_t size) : fSize(size) {}
  std::uint64_t Size() const override { return fSize; }
  std::size_t Read(std::uint64_t, std::span<std::uint8_t>) const override {
    throw NSMordel::XRead("read");
  }

 private:
  std::uint64_t fSize;
};

TEST(DWOPExtraInfo, IsFramedOnBothSides) {
  using namespace std::string_literals;
  EXPECT_EQ(Block(BytesOf("abc")), BytesOf("DwMBDwTM\0\0\0\3abcDwTM\0\0\0\3DwME"s));
  EXPECT_EQ(Block({}), BytesOf("DwMBDwTM\0\0\0\0DwTM\0\0\0\0DwME"s));
}

TEST(DWOPExtraInfo, CopiesPieceByPiece) {
  for (const std::size_t length : {8191u, 8192u, 8193u, 20000u}) {
    CBytes data(length);
    std::iota(data.begin(), data.end(), std::uint8_t{0});
    const CBytes block = Block(data);
    ASSERT_EQ(block.size(), length + 24);
    EXPECT_TRUE(std::equal(data.begin(), data.end(), block.begin() + 12)) << length;
    const auto found = ReadExtraInfo(CMemoryMedia(block), 0);
    EXPECT_EQ(found, (CExtraInfoBlock{0, 12, static_cast<std::uint32_t>(length)}));
  }
  int calls = 0;
  CMemoryMedia media;
  CMediaCursor cursor(media);
  WriteExtraInfo(cursor, CMemoryMedia(CBytes(20000)), [&calls] { ++calls; });
  EXPECT_EQ(calls, 3);
}

TEST(DWOPExtraInfo, RefusesALengthBeyond32BitsBeforeItWrites) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  const auto write = [&] { WriteExtraInfo(cursor, CHugeMedia(std::uint64_t{1} << 32), {}); };
  EXPECT_EQ(NSTest::FaultText<NSMordel::XOutOfSpace>(write), "extra info to large");
  EXPECT_EQ(media.Size(), 0u);
  EXPECT_THROW(WriteExtraInfo(cursor, CHugeMedia((std::uint64_t{1} << 32) - 1), {}),
               NSMordel::XRead);
}

TEST(DWOPExtraInfo, NothingButAWholeBlockMayFollowTheSamples) {
  const CBytes samples = BytesOf("12345678");
  const CBytes block = Block(BytesOf("payload"));
  CBytes stream = samples;
  EXPECT_EQ(ReadExtraInfo(CMemoryMedia(stream), 8), std::nullopt);
  EXPECT_THROW(ReadExtraInfo(CMemoryMedia(stream), 4), NSMordel::XFormatViolation);
  EXPECT_THROW(ReadExtraInfo(CMemoryMedia(stream), 9), NSMordel::XFormatViolation);
  stream.insert(stream.end(), block.begin(), block.end());
  EXPECT_EQ(ReadExtraInfo(CMemoryMedia(stream), 8), (CExtraInfoBlock{8, 20, 7}));
  EXPECT_THROW(ReadExtraInfo(CMemoryMedia(stream), 4), NSMordel::XFormatViolation);

  CBytes longer = stream;
  longer.push_back(0);
  EXPECT_THROW(ReadExtraInfo(CMemoryMedia(longer), 8), NSMordel::XFormatViolation);
  for (std::size_t length = 9; length < stream.size(); ++length) {
    const CBytes cut(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_THROW(ReadExtraInfo(CMemoryMedia(cut), 8), NSMordel::XFormatViolation) << length;
  }
  // Each byte of the frame counts, those of the data do not.
  for (std::size_t i = 0; i < block.size(); ++i) {
    CBytes damaged = block;
    damaged[i] ^= 0x01;
    const bool isData = i >= 12 && i < 19;
    EXPECT_EQ(FindExtraInfoAtEnd(CMemoryMedia(damaged)).has_value(), isData) << i;
  }
}

}  // namespace
}  // namespace NSTambraPacking
