#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/StdException.h"

#include "package/MemoryMedia.h"
#include "references/IFFFile.h"

namespace NSTolbrook {
namespace {

using NSBigFilePackage::CMemoryMedia;
using NSMordel::XIllegalCallSequence;

constexpr FourCharCode kLeaf = MakeFourCharCode("LEAF");
constexpr FourCharCode kTree = MakeFourCharCode("TREE");

std::string Text(const std::shared_ptr<CMemoryMedia>& media) {
  return {media->Bytes().begin(), media->Bytes().end()};
}

TEST(IFFWriter, WritesBothDialects) {
  using namespace std::string_literals;
  const std::vector<std::uint8_t> data{'a', 'b', 'c'};
  const auto big = std::make_shared<CMemoryMedia>();
  CIFFWriter2 iff(big);
  iff.OpenChunk(kLeaf)->Write(0, data);
  iff.CloseChunk(3);
  iff.OpenGroup(EChunkKind::kForm, kTree);
  iff.CloseChunk(0);
  EXPECT_EQ(Text(big), "LEAF\0\0\0\3abc\0FORM\0\0\0\4TREE"s);

  const auto little = std::make_shared<CMemoryMedia>();
  CRIFFWriter2 riff(little);
  riff.OpenGroup(EChunkKind::kForm, kTree)->Write(0, data);
  riff.CloseChunk(3);
  EXPECT_EQ(Text(little), "RIFF\7\0\0\0TREEabc\0"s);
}

TEST(IFFWriter, RefusesMisuse) {
  CIFFWriter2 writer(std::make_shared<CMemoryMedia>());
  EXPECT_THROW(writer.CloseChunk(0), XIllegalCallSequence);
  EXPECT_THROW(writer.OpenChunk(MakeFourCharCode(" BAD")), std::invalid_argument);
  EXPECT_THROW(writer.OpenChunk(kListID), std::invalid_argument);
  EXPECT_THROW(writer.OpenGroup(EChunkKind::kForm, 0), std::invalid_argument);
  EXPECT_THROW(writer.OpenGroup(EChunkKind::kPlain, kTree), std::logic_error);
  writer.OpenGroup(EChunkKind::kForm, kTree);
  EXPECT_THROW(writer.OpenChunk(kLeaf), XIllegalCallSequence);
  EXPECT_THROW(writer.CloseChunk(0xFFFFFFFC), NSMordel::XOutOfSpace);
}

TEST(IFFFile, ClosesLevelsInReverseOrderOnly) {
  const auto media = std::make_shared<CMemoryMedia>();
  CIFFFileWriter writer(media);
  const CIFFFileLevel outer = writer.OpenLevel(EChunkKind::kForm, kTree);
  const CIFFFileLevel inner = writer.OpenLevel(EChunkKind::kList, kTree);
  EXPECT_THROW(writer.CloseLevel(outer), XIllegalCallSequence);
  writer.OpenChunk(kLeaf);
  EXPECT_THROW(writer.CloseLevel(inner), XIllegalCallSequence);
  writer.CloseChunk(0);
  writer.CloseLevel(inner);
  EXPECT_THROW(writer.CloseLevel(inner), XIllegalCallSequence);
  const CIFFFileLevel second = writer.OpenLevel(EChunkKind::kList, kTree);
  EXPECT_THROW(writer.CloseLevel(inner), XIllegalCallSequence);
  writer.CloseLevel(second);
  writer.CloseLevel(outer);
  EXPECT_THROW(writer.CloseLevel({}), XIllegalCallSequence);

  CIFFFileReader reader(media);
  EXPECT_THROW(reader.NextChunk(), XIllegalCallSequence);
  EXPECT_THROW(reader.OpenLevel(), XIllegalCallSequence);
  ASSERT_TRUE(reader.FindGroup(EChunkKind::kForm, kTree));
  const CIFFFileLevel form = reader.OpenLevel();
  ASSERT_TRUE(reader.FirstChunk());
  const CIFFFileLevel list = reader.OpenLevel();
  EXPECT_THROW(reader.CloseLevel(form), XIllegalCallSequence);
  reader.CloseLevel(list);
  EXPECT_TRUE(reader.NextChunk());  // goes on behind the group that was open
  EXPECT_FALSE(reader.NextChunk());
  reader.CloseLevel(form);
  EXPECT_THROW(reader.CloseLevel({}), XIllegalCallSequence);
}

TEST(IFFFile, CarriesGroupsOfAnyDepth) {
  constexpr std::size_t kDepth = 100'000;
  const auto media = std::make_shared<CMemoryMedia>();
  CIFFFileWriter writer(media);
  std::vector<CIFFFileLevel> levels;
  for (std::size_t i = 0; i < kDepth; ++i) {
    levels.push_back(writer.OpenLevel(EChunkKind::kForm, kTree));
  }
  writer.WriteChunk(kLeaf, std::vector<std::uint8_t>{1, 2, 3});
  for (; !levels.empty(); levels.pop_back()) writer.CloseLevel(levels.back());
  EXPECT_EQ(media->Size(), kDepth * 12 + 12);

  CIFFFileReader reader(media);
  while (reader.FirstChunk()->fKind == EChunkKind::kForm) reader.OpenLevel();
  EXPECT_EQ(reader.Depth(), kDepth);
  EXPECT_EQ(reader.OpenData()->Size(), 3u);
}

}  // namespace
}  // namespace NSTolbrook
