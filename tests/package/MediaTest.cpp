#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <rapidcheck.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/BufferedReader.h"
#include "package/MemoryMedia.h"
#include "package/PartialMedia.h"
#include "package/StdioMedia.h"
#include "tests/support/TemporaryFolder.h"

namespace NSBigFilePackage {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();

Bytes Counting(std::size_t count) {
  Bytes bytes(count);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
  return bytes;
}

Bytes ReadUpTo(const IMedia& media, std::uint64_t position, std::size_t count) {
  Bytes bytes(count);
  bytes.resize(media.Read(position, bytes));
  return bytes;
}

/// What every media that can be written promises.
void ExpectWritable(IMedia& media) {
  media.Write(3, Bytes{1, 2});
  EXPECT_EQ(ReadUpTo(media, 0, 9), (Bytes{0, 0, 0, 1, 2}));
  media.Write(2, Bytes{7, 8});
  EXPECT_EQ(ReadUpTo(media, 1, 3), (Bytes{0, 7, 8}));
  media.SetSize(3);
  media.SetSize(5);
  EXPECT_EQ(ReadUpTo(media, 2, 9), (Bytes{7, 0, 0}));
  EXPECT_EQ(ReadUpTo(media, 5, 1), Bytes{});
  EXPECT_EQ(ReadUpTo(media, kHuge, 1), Bytes{});
  EXPECT_EQ(media.Size(), 5u);
  media.Flush();
}

TEST(MediaTest, WritableMediaGrowAndFillGapsWithZeros) {
  CMemoryMedia memory;
  ExpectWritable(memory);
  EXPECT_THROW(memory.Write(kHuge, Bytes{1}), NSMordel::XOutOfSpace);
  EXPECT_THROW(memory.SetSize(kHuge), NSMordel::XOutOfSpace);

  const auto outer = std::make_shared<CMemoryMedia>(Bytes{9, 9});
  CWritablePartialMedia partial(outer, 4);
  EXPECT_EQ(partial.Size(), 0u);
  ExpectWritable(partial);
  EXPECT_EQ(outer->Bytes(), (Bytes{9, 9, 0, 0, 0, 0, 7, 0, 0}));
  EXPECT_THROW(partial.Write(kHuge - 3, Bytes{1}), NSMordel::XOutOfSpace);

  const NSTest::CTemporaryFolder folder;
  const auto file = CStdioMedia::CreateNew(folder.Path() / "file");
  ExpectWritable(*file);
  file->Close();
  EXPECT_EQ(folder.Read("file"), (Bytes{0, 0, 7, 0, 0}));
}

TEST(MediaTest, FilesOpenInTheWayAskedFor) {
  const NSTest::CTemporaryFolder folder;
  const auto path = folder.Write("file", "abc");
  EXPECT_THROW(CStdioMedia::CreateNew(path), NSMordel::XAlreadyExists);
  EXPECT_THROW(CStdioMedia::OpenForReading(folder.Path() / "none"), NSMordel::XNotFound);
  const auto reading = CStdioMedia::OpenForReading(path);
  EXPECT_THROW(reading->Write(0, Bytes{1}), NSMordel::XReadOnly);
  EXPECT_THROW(reading->SetSize(0), NSMordel::XReadOnly);
  EXPECT_EQ(ReadUpTo(*reading, 1, 9), (Bytes{'b', 'c'}));
  CStdioMedia::OpenForUpdate(path)->Write(1, Bytes{'X'});
  EXPECT_EQ(folder.ReadText("file"), "aXc");
  CStdioMedia::CreateReplacing(path);
  EXPECT_EQ(folder.ReadText("file"), "");
}

TEST(MediaTest, WindowsMustLieInsideTheirMedia) {
  const auto media = std::make_shared<CMemoryMedia>(Counting(10));
  for (const auto& [start, length] :
       {std::pair<std::uint64_t, std::uint64_t>{0, 11}, {11, 0}, {9, 2}, {kHuge, 2}, {2, kHuge}}) {
    EXPECT_THROW(CPartialMedia(media, start, length), NSMordel::XFormatViolation) << start;
  }
  EXPECT_EQ(CPartialMedia(media, 10, 0).Size(), 0u);
  CPartialMedia window(media, 4, 3);
  EXPECT_EQ(ReadUpTo(window, 1, 9), (Bytes{5, 6}));
  EXPECT_EQ(ReadUpTo(window, 3, 9), Bytes{});
  EXPECT_THROW(window.Write(0, Bytes{1}), NSMordel::XReadOnly);
  EXPECT_THROW(window.SetSize(1), NSMordel::XReadOnly);
  EXPECT_THROW(CMemoryView(media->Bytes()).Write(0, Bytes{1}), NSMordel::XReadOnly);
}

TEST(MediaTest, BufferedReadsEqualPlainOnes) {
  const bool equal = rc::check([] {
    const auto media =
        std::make_shared<CMemoryMedia>(Counting(*rc::gen::inRange<std::size_t>(0, 60)));
    const CBufferedReader reader(media, *rc::gen::inRange<std::size_t>(1, 20));
    for (int i = 0; i < 20; ++i) {
      const auto position = *rc::gen::inRange<std::uint64_t>(0, 64);
      const auto count = *rc::gen::inRange<std::size_t>(0, 40);
      RC_ASSERT(ReadUpTo(reader, position, count) == ReadUpTo(*media, position, count));
    }
  });
  EXPECT_TRUE(equal);
}

}  // namespace
}  // namespace NSBigFilePackage
