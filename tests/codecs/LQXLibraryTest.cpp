#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <typeinfo>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/LQXLibrary.h"
#include "package/MemoryMedia.h"
#include "tests/support/Damage.h"
#include "tests/support/FailingMedia.h"
#include "tests/support/FaultText.h"
#include "tests/support/SystemDifferences.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;
using NSMordel::XFormatViolation;
using NSMordel::XOpen;
using NSMordel::XUnsupportedFormat;
using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

/// A file of the stand-in's format with three slices.
Bytes Loop(std::uint8_t flags = 0, std::uint8_t channels = 2, std::uint8_t version = 1) {
  return {'L', 'Q', 'X', 'T', version, channels, 3, flags, 100, 10, 20, 30};
}

std::string OpenFailure(const NSTolbrook::NativePath& path) {
  return NSTest::FaultText<XOpen>([&] { const CLQXLibrary library(path); });
}

/// The code of the failure with which the library refuses a file, behind a "?" when it does not
/// support it; "-" of a failure without code, nothing when it accepts the file.
std::string Refusal(const CLQXLibrary& library, const Bytes& file) {
  try {
    library.Verify(CMemoryMedia(file));
    return "";
  } catch (const XFormatViolation& fault) {
    const std::string* const code = fault.FindContext(NSMordel::kErrorCode);
    return code == nullptr ? "-" : *code;
  } catch (const XUnsupportedFormat& fault) {
    return "?" + *fault.FindContext(NSMordel::kErrorCode);
  }
}

class LQXLibrary : public testing::Test {
 protected:
  void SetUp() override { NSTest::SetVariable(CLQXLibrary::kEnvironmentVariable); }
  void TearDown() override { NSTest::SetVariable(CLQXLibrary::kEnvironmentVariable); }

  static std::int32_t OpenLoops() {
    const NSTolbrook::CDynamicLibrary again{LQX_STANDIN};
    return reinterpret_cast<std::int32_t (*)()>(again.Symbol("StandInOpenLoops"))();
  }

  NSTest::CTemporaryFolder fFolder;
};

TEST_F(LQXLibrary, VerifiesFilesAndSaysWhatTheLibraryFoundWrong) {
  const CLQXLibrary library(LQX_STANDIN);
  const std::pair<Bytes, const char*> kCases[] = {
      {Loop(), ""},
      {Loop(0, 64), ""},
      {{'L', 'Q', 'X', 'T', 1, 1, 0, 0, 9}, ""},
      {{'L', 'Q', 'X', 'T', 1, 1, 1, 0x80, 0}, ""},  // 65536 empty slices
      {{}, "1"},
      {{'L', 'Q', 'X', 'U', 1, 1, 1, 0, 9, 0}, "1"},
      {{'L', 'Q', 'X', 'T', 1, 1, 1, 0, 9}, "1"},  // sample data is missing
      {Loop(1), "77"},
      {Loop(2), "1"},
      {Loop(0, 2, 2), "?2"},
      // Found by the checks of what the library says.
      {Loop(8), "-"},
      {Loop(0, 0), "-"},
      {Loop(0, 65), "-"},
      {{'L', 'Q', 'X', 'T', 1, 1, 2, 0x80, 0}, "-"},  // too many slices
  };
  for (const auto& [bytes, refusal] : kCases) {
    EXPECT_EQ(Refusal(library, bytes), refusal) << testing::PrintToString(bytes);
    EXPECT_EQ(OpenLoops(), 0);
  }
}

TEST_F(LQXLibrary, FailuresOfTheMediaPassTheLibraryUnchanged) {
  const CLQXLibrary library(LQX_STANDIN);
  // While opening, while rendering, and while rendering where the library ignores it.
  const std::pair<std::uint64_t, std::uint8_t> kCases[] = {{8, 0}, {9, 0}, {9, 4}};
  for (const auto& [budget, flags] : kCases) {
    const NSTest::CFailingMedia media(std::make_shared<CMemoryMedia>(Loop(flags)), budget);
    const auto verify = [&] { library.Verify(media); };
    EXPECT_EQ(NSTest::FaultText<NSMordel::XRead>(verify), "the medium broke");
    EXPECT_EQ(OpenLoops(), 0);
  }
}

TEST_F(LQXLibrary, IsInitializedWhileItIsInUse) {
  const NSTolbrook::CDynamicLibrary keepsItLoaded{LQX_STANDIN};
  EXPECT_EQ(OpenLoops(), -1);
  {
    const CLQXLibrary library(LQX_STANDIN);
    EXPECT_EQ(OpenLoops(), 0);
  }
  EXPECT_EQ(OpenLoops(), -1);
}

TEST_F(LQXLibrary, RefusesLibrariesThatCannotServe) {
  EXPECT_THAT(OpenFailure(LQX_STANDIN_INCOMPLETE), HasSubstr("LQXRenderSlice"));
  EXPECT_THAT(OpenFailure(LQX_STANDIN_FAILING), HasSubstr("99"));
  EXPECT_THROW(CLQXLibrary(fFolder.Write("libLQX.so", "no library")), XOpen);
  EXPECT_THROW(CLQXLibrary(fFolder.Path() / "missing.so"), XOpen);
}

TEST_F(LQXLibrary, IsLookedForInOrder) {
  const auto find = [&](std::optional<NSTolbrook::NativePath> option = std::nullopt) {
    return CLQXLibrary::Find(option, fFolder.Path()) != nullptr;
  };
  const auto failure = [&](std::optional<NSTolbrook::NativePath> option = std::nullopt) {
    return NSTest::FaultText<XOpen>([&] { find(option); });
  };
  const NSTolbrook::NativePath missing = fFolder.Path() / "missing.so";
  EXPECT_FALSE(find());
  EXPECT_TRUE(find(LQX_STANDIN));

  std::filesystem::copy_file(LQX_STANDIN, fFolder.Path() / CLQXLibrary::FileName());
  EXPECT_TRUE(find());
  NSTest::SetVariable(CLQXLibrary::kEnvironmentVariable, missing.string());
  EXPECT_THAT(failure(), HasSubstr("missing.so\" (named by TAMBRA_LQX_LIBRARY)"));
  EXPECT_TRUE(find(LQX_STANDIN));
  NSTest::SetVariable(CLQXLibrary::kEnvironmentVariable, LQX_STANDIN);
  EXPECT_THAT(failure(missing), HasSubstr("missing.so\" (named by an option)"));

  NSTest::SetVariable(CLQXLibrary::kEnvironmentVariable);
  std::filesystem::remove(fFolder.Path() / CLQXLibrary::FileName());
  fFolder.Write(CLQXLibrary::FileName(), "no library");
  EXPECT_THAT(failure(), HasSubstr("(beside the program)"));
}

Bytes Chunk(const char* id, const char* type, const Bytes& data) {
  Bytes bytes(id, id + 4);
  const std::size_t size = data.size() + std::string_view(type).size();
  bytes.insert(bytes.end(),
               {0, static_cast<std::uint8_t>(size >> 16), static_cast<std::uint8_t>(size >> 8),
                static_cast<std::uint8_t>(size)});
  bytes.insert(bytes.end(), type, type + std::string_view(type).size());
  bytes.insert(bytes.end(), data.begin(), data.end());
  return bytes;
}

Bytes Nested(std::size_t depth) {
  Bytes bytes;
  for (std::size_t i = 0; i < depth; ++i) bytes = Chunk("FORM", "LOOP", bytes);
  return bytes;
}

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

bool Walks(const Bytes& bytes) {
  try {
    VerifyLoopStructure(std::make_shared<CMemoryMedia>(bytes));
  } catch (const XFormatViolation&) {
    return false;
  }
  return true;
}

TEST(LoopStructure, WalksChunkFilesToTheirEnd) {
  const Bytes body = Chunk("HEAD", "", {1, 2, 3, 0}) + Chunk("LIST", "SLCS", Chunk("SLCE", "", {}));
  for (const Bytes& sound :
       {Chunk("CAT ", "LOOP", body), Chunk("FORM", "LOOP", {}), Nested(kDeepestLoopGroup)}) {
    EXPECT_TRUE(Walks(sound));
  }
  const Bytes kFaulty[] = {
      {},
      Chunk("HEAD", "", {1, 2, 3, 4}),         // no group
      Chunk("FORM", "LOOP", {'H', 'E', 'A'}),  // part of a header
      Chunk("FORM", "LOOP", body + Bytes{'H', 'E'}),
      Chunk("FORM", "LO", {}),  // no room for the type
      Chunk("FORM", "LOOP", Chunk("\1EAD", "", {})),
      Nested(kDeepestLoopGroup + 1),
  };
  for (const Bytes& faulty : kFaulty) EXPECT_FALSE(Walks(faulty)) << &faulty - kFaulty;
}

TEST(LoopStructure, EveryCutIsRefusedAndEveryTurnedBitSurvived) {
  const Bytes whole = Chunk("CAT ", "LOOP", Chunk("HEAD", "", {1, 2}) + Nested(3));
  NSTest::ForEachCut(whole, [](const Bytes& cut) { EXPECT_FALSE(Walks(cut)); });
  NSTest::ForEachTurnedBit(whole, [](const Bytes& damaged) { Walks(damaged); });
}

}  // namespace
}  // namespace NSTambraPacking
