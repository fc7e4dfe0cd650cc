#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/StdException.h"

#include "package/MemoryMedia.h"
#include "references/FlatIFFReader.h"
#include "references/IFFReader.h"
#include "tests/support/FaultText.h"

namespace NSTolbrook {
namespace {

using namespace std::string_literals;
using NSBigFilePackage::CMemoryMedia;
using NSBigFilePackage::SharedMedia;
using NSMordel::XFormatViolation;
using testing::HasSubstr;

SharedMedia MediaOf(const std::string& bytes) {
  return std::make_shared<CMemoryMedia>(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

/// "ID size@position" of every chunk, groups with their kind's letter, until the range ends;
/// "!" and the reader's position when a fault ends the walk.
template <class Reader>
std::string Walk(Reader reader) {
  std::string text;
  try {
    for (auto chunk = reader.FirstChunk(); chunk; chunk = reader.NextChunk(*chunk)) {
      const char kind = "pfcl"[static_cast<int>(chunk->fKind)];
      text += kind + FourCharCodeText(chunk->fCode) + std::to_string(chunk->fSize) + "@" +
              std::to_string(chunk->fPosition) + " ";
    }
  } catch (const XFormatViolation& fault) {
    EXPECT_THAT(fault.what(), HasSubstr("at offset " + std::to_string(reader.Position())));
    text += "!" + std::to_string(reader.Position());
  }
  return text;
}

TEST(IFFReader, WalksWhatStandsThere) {
  const struct {
    std::string bytes;
    std::string chunks;
  } kCases[] = {
      {"", ""},
      {"ABCD\0\0\0"s, ""},
      {"ABCD\0\0\0\0"s, "pABCD0@0 "},
      {"ABCD\0\0\0\3abc\0EFGH\0\0\0\0"s, "pABCD3@0 pEFGH0@12 "},
      {"ABCD\0\0\0\3abc"s, "pABCD3@0 "},  // no pad byte at the end
      {"ABCD\0\0\0\2ab"s, "pABCD2@0 "},   // exactly the bytes remaining
      {"ABCD\0\0\0\3ab"s, "!0"},          // one more
      {"ABCD\xFF\xFF\xFF\xFF"s, "!0"},    // the largest size
      {"1234\0\0\0\0"s, "p12340@0 "},     // digits are valid
      {"A   \0\0\0\0"s, "pA   0@0 "},     // blanks behind the first
      {" BCD\0\0\0\0"s, "!0"},            // blank first
      {"AB\x1F"
       "D\0\0\0\0"s,
       "!0"},                                    // below 32
      {"ABC\x7F\0\0\0\0"s, "!0"},                // above 126
      {"ABCD\0\0\0\0EFG"s, "pABCD0@0 !8"},       // cut off inside the ID
      {"ABCD\0\0\0\0EFGH\0\0"s, "pABCD0@0 !8"},  // inside the size
      {"LIST\0\0\0\0"s, "!0"},                   // inside the type
      {"FORM\0\0\0\4 BAD"s, "!0"},               // no valid type
      {"FORM\0\0\0\4AIFFCAT \0\0\0\4abcdLIST\0\0\0\4efgh"s, "fAIFF4@0 cabcd4@12 lefgh4@24 "},
      {"RIFF\0\0\0\4WAVE"s, "pRIFF4@0 "},     // no group in this dialect
      {"FORM\0\0\0\2AIFF"s, "fAIFF2@0 !10"},  // smaller than its type: the walk goes by size
  };
  for (const auto& test : kCases) {
    EXPECT_EQ(Walk(CIFFReader2(MediaOf(test.bytes))), test.chunks) << test.bytes;
  }
  EXPECT_EQ(Walk(CRIFFReader2(MediaOf("RIFF\4\0\0\0WAVELIST\4\0\0\0INFOFORM\4\0\0\0AIFFCAT "
                                      "\4\0\0\0abcd"s))),
            "fWAVE4@0 lINFO4@12 pFORM4@24 cabcd4@36 ");
}

TEST(IFFReader, StandsOnTheContentsOfAGroup) {
  const SharedMedia media = MediaOf(
      "SKIP\0\0\0\1x\0"
      "FORM\0\0\0\x1CTREE"
      "LEAF\0\0\0\3abc\0"
      "LIST\0\0\0\4TREE"
      "TAIL\0\0\0\0"s);
  CIFFReader2 file(media);
  const auto tree = file.FindGroup(EChunkKind::kForm, MakeFourCharCode("TREE"));
  ASSERT_TRUE(tree);
  EXPECT_EQ(file.GroupDataSize(*tree), 24u);
  EXPECT_EQ(file.HeaderLength(*tree), 12u);
  EXPECT_EQ(file.OpenData(*tree)->Size(), 24u);
  EXPECT_FALSE(file.FindGroup(EChunkKind::kCatalogue, MakeFourCharCode("TREE")));

  CIFFReader2 contents = file.EnterGroup(*tree);
  EXPECT_EQ(Walk(contents), "pLEAF3@0 lTREE4@12 ");
  const auto leaf = contents.FirstChunk();
  std::vector<std::uint8_t> data(contents.OpenData(*leaf)->Size());
  NSBigFilePackage::ReadExactly(*contents.OpenData(*leaf), 0, data);
  EXPECT_EQ(std::string(data.begin(), data.end()), "abc");
  EXPECT_EQ(Walk(contents.EnterGroup(*contents.NextChunk(*leaf))), "");

  // A child may not leave its group, though the file goes on; the message tells the file's offset.
  CIFFReader2 cut(MediaOf("FORM\0\0\0\x0CTREELEAF\0\0\0\4abcd"s));
  EXPECT_EQ(
      NSTest::FaultText<XFormatViolation>([&] { cut.EnterGroup(*cut.FirstChunk()).FirstChunk(); }),
      "a chunk runs past the end of the data (chunk \"LEAF\" at offset 12)");
}

TEST(IFFReader, RefusesGroupsWithoutRoomForTheirType) {
  CIFFReader2 file(MediaOf("FORM\0\0\0\3TREE"s));
  const auto group = file.FirstChunk();
  ASSERT_TRUE(group);
  EXPECT_THROW(file.GroupDataSize(*group), XFormatViolation);
  EXPECT_THROW(file.EnterGroup(*group), XFormatViolation);
  EXPECT_THROW(file.OpenData(*group), XFormatViolation);
  const CChunkInfo plain;
  EXPECT_THROW(file.EnterGroup(plain), std::logic_error);
  EXPECT_THROW(HeaderLength(static_cast<EChunkKind>(4)), std::logic_error);
}

TEST(FlatIFFReader, TakesEveryChunkAsPlain) {
  const std::string bytes = "RIFF\4\0\0\0abcdodd \1\0\0\0x\0LIST\2\0\0\0ab\1\2\3\4\0\0\0\0"s;
  CIFFReader walk(MediaOf(bytes), EByteOrder::kLittleEndian);
  std::string seen;
  while (walk.AtChunk()) {
    const auto chunk = walk.NextChunk();
    seen += FourCharCodeText(chunk->fCode) + std::to_string(walk.OpenData(*chunk)->Size()) + " ";
  }
  EXPECT_EQ(seen, "RIFF4 odd 1 LIST2 ");
  EXPECT_THROW(walk.NextChunk(), XFormatViolation);

  // Data may leave the walk's range, not the media.
  CIFFReader range(MediaOf("AAAA\0\0\0\4abcdBBBB\0\0\0\0"s), EByteOrder::kBigEndian, 0, 10);
  EXPECT_TRUE(range.NextChunk());
  EXPECT_FALSE(range.NextChunk());
  CIFFReader past(MediaOf("AAAA\0\0\0\5abcd"s), EByteOrder::kBigEndian, 0, 8);
  EXPECT_THROW(past.NextChunk(), XFormatViolation);
  EXPECT_FALSE(CIFFReader(MediaOf("AAAA"), EByteOrder::kBigEndian).NextChunk());
  EXPECT_FALSE(CIFFReader(MediaOf("AAAA"), EByteOrder::kBigEndian, 99).NextChunk());
}

}  // namespace
}  // namespace NSTolbrook
