#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <typeinfo>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/LQXLibrary.h"
#include "package/MemoryMedia.h"
#include "tests/support/FailingMedia.h"
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
  try {
    const CLQXLibrary library(path);
  } catch (const XOpen& failure) {
    return failure.Message();
  }
  return "";
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
  const struct {
    Bytes bytes;
    const char* code;  // nullptr: sound; "": found by the checks of what the library says
  } kCases[] = {
      {Loop(), nullptr},
      {Loop(0, 64), nullptr},
      {{'L', 'Q', 'X', 'T', 1, 1, 0, 0, 9}, nullptr},
      {{'L', 'Q', 'X', 'T', 1, 1, 1, 0x80, 0}, nullptr},  // 65536 empty slices
      {{}, "1"},
      {{'L', 'Q', 'X', 'U', 1, 1, 1, 0, 9, 0}, "1"},
      {{'L', 'Q', 'X', 'T', 1, 1, 1, 0, 9}, "1"},  // sample data is missing
      {Loop(1), "77"},
      {Loop(2), "1"},
      {Loop(8), ""},
      {Loop(0, 0), ""},
      {Loop(0, 65), ""},
      {{'L', 'Q', 'X', 'T', 1, 1, 2, 0x80, 0}, ""},  // too many slices
  };
  for (const auto& test : kCases) {
    SCOPED_TRACE(testing::PrintToString(test.bytes));
    const CMemoryMedia media(test.bytes);
    if (test.code == nullptr) {
      EXPECT_NO_THROW(library.Verify(media));
    } else {
      try {
        library.Verify(media);
        ADD_FAILURE() << "was accepted";
      } catch (const XFormatViolation& fault) {
        const std::string* code = fault.FindContext(NSMordel::kErrorCode);
        EXPECT_EQ(code == nullptr ? "" : *code, test.code);
      }
    }
    EXPECT_EQ(OpenLoops(), 0);
  }
  try {
    library.Verify(CMemoryMedia(Loop(0, 2, 2)));
    ADD_FAILURE() << "was accepted";
  } catch (const XUnsupportedFormat& fault) {
    EXPECT_EQ(*fault.FindContext(NSMordel::kErrorCode), "2");
  }
}

TEST_F(LQXLibrary, FailuresOfTheMediaPassTheLibraryUnchanged) {
  const CLQXLibrary library(LQX_STANDIN);
  // While opening, while rendering, and while rendering where the library ignores it.
  const std::pair<std::uint64_t, std::uint8_t> kCases[] = {{8, 0}, {9, 0}, {9, 4}};
  for (const auto& [budget, flags] : kCases) {
    const NSTest::CFailingMedia media(std::make_shared<CMemoryMedia>(Loop(flags)), budget);
    try {
      library.Verify(media);
      ADD_FAILURE() << "was accepted";
    } catch (const NSMordel::XRead& failure) {
      EXPECT_STREQ(failure.Message(), "the medium broke");
    }
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
  EXPECT_NE(OpenFailure(fFolder.Write("libLQX.so", "no library")), "");
  EXPECT_NE(OpenFailure(fFolder.Path() / "missing.so"), "");
}

TEST_F(LQXLibrary, IsLookedForInOrder) {
  const auto find = [&](std::optional<NSTolbrook::NativePath> option = std::nullopt) {
    return CLQXLibrary::Find(option, fFolder.Path()) != nullptr;
  };
  const auto failure = [&](std::optional<NSTolbrook::NativePath> option = std::nullopt) {
    try {
      find(option);
    } catch (const XOpen& opening) {
      return std::string(opening.Message());
    }
    return std::string("none");
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
  EXPECT_TRUE(Walks(Chunk("CAT ", "LOOP", body)));
  EXPECT_TRUE(Walks(Chunk("FORM", "LOOP", {})));
  EXPECT_TRUE(Walks(Nested(kDeepestLoopGroup)));

  EXPECT_FALSE(Walks({}));
  EXPECT_FALSE(Walks(Chunk("HEAD", "", {1, 2, 3, 4})));         // no group
  EXPECT_FALSE(Walks(Chunk("FORM", "LOOP", {'H', 'E', 'A'})));  // part of a header
  EXPECT_FALSE(Walks(Chunk("FORM", "LOOP", body + Bytes{'H', 'E'})));
  EXPECT_FALSE(Walks(Chunk("FORM", "LO", {})));  // no room for the type
  EXPECT_FALSE(Walks(Chunk("FORM", "LOOP",
                           Chunk("\x01"
                                 "EAD",
                                 "", {}))));
  EXPECT_FALSE(Walks(Nested(kDeepestLoopGroup + 1)));
}

TEST(LoopStructure, EveryCutIsRefusedAndEveryDamagedByteSurvived) {
  const Bytes whole = Chunk("CAT ", "LOOP", Chunk("HEAD", "", {1, 2}) + Nested(3));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(Walks(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))));
  }
  int accepted = 0;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    for (int value = 0; value < 256; ++value) {
      Bytes damaged = whole;
      damaged[i] = static_cast<std::uint8_t>(value);
      accepted += Walks(damaged) ? 1 : 0;
    }
  }
  EXPECT_LT(accepted, static_cast<int>(whole.size()) * 256);
}

}  // namespace
}  // namespace NSTambraPacking
