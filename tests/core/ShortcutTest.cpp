#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Shortcut.h"

#include "package/MemoryMedia.h"
#include "tests/support/ShortcutBuilder.h"

namespace {

using NSBigFilePackage::CMemoryMedia;
using NSTest::MakeShortcut;
using NSTolbrook::CShortcut;
using Bytes = std::vector<std::uint8_t>;

TEST(Shortcut, ReadsBothPathsInEveryForm) {
  const std::u16string_view paths[][2] = {{u"..\\Drums\\Kick é.wav", u"D:\\Drums\\Kick é.wav"},
                                          {u".\\a", u""},
                                          {u"", u"C:\\b"},
                                          {u"", u""}};
  for (int form = 0; form < 8; ++form) {
    for (const auto& [relative, local] : paths) {
      const CMemoryMedia media(
          MakeShortcut(relative, local, {(form & 1) != 0, (form & 2) != 0, (form & 4) != 0}));
      const CShortcut shortcut = CShortcut::Parse(media);
      EXPECT_EQ(shortcut.RelativePath(), relative) << form;
      EXPECT_EQ(shortcut.LocalBasePath(), local) << form;
    }
  }
  const CMemoryMedia media(MakeShortcut(u"x\u03A9", u"C:\\\u03A9"));
  EXPECT_EQ(CShortcut::Parse(media).LocalBasePath(), u"C:\\\u03A9");
}

TEST(Shortcut, JoinsTheSuffixAndHeedsTheFlagThatIgnoresTheInformation) {
  Bytes bytes = MakeShortcut(u"", u"C:\\Folder", {false, false, false});
  bytes.resize(bytes.size() - 5);  // the empty suffix and the end block
  for (const char character : std::string_view("a.wav\0\0\0\0", 10)) {
    bytes.push_back(static_cast<std::uint8_t>(character));
  }
  bytes[76] = static_cast<std::uint8_t>(bytes[76] + 5);
  EXPECT_EQ(CShortcut::Parse(CMemoryMedia(bytes)).LocalBasePath(), u"C:\\Folder\\a.wav");
  bytes[21] |= 1;
  EXPECT_EQ(CShortcut::Parse(CMemoryMedia(bytes)).LocalBasePath(), u"");
}

TEST(Shortcut, RefusesWhatIsCutOrDamaged) {
  const Bytes good = MakeShortcut(u"..\\a.wav", u"C:\\a.wav");
  const std::size_t endBlock = 4;
  for (std::size_t length = 0; length < good.size() - endBlock; ++length) {
    const CMemoryMedia media(Bytes(good.begin(), good.begin() + static_cast<long>(length)));
    EXPECT_THROW(CShortcut::Parse(media), NSMordel::XFormatViolation) << length;
  }
  const std::size_t info = 84;  // behind the header and the target list
  const struct {
    std::size_t fOffset;
    std::uint8_t fValue;
  } damages[] = {{0, 77},          {4, 2},           {19, 0x47},     {76, 0xFF},
                 {info, 0},        {info + 3, 1},    {info + 4, 4},  {info + 16, 0xF0},
                 {info + 24, 255}, {info + 28, 255}, {info + 35, 1}, {good.size() - 22, 200}};
  for (const auto& [offset, value] : damages) {
    Bytes bytes = good;
    bytes[offset] = value;
    EXPECT_THROW(CShortcut::Parse(CMemoryMedia(bytes)), NSMordel::XFormatViolation) << offset;
  }
  Bytes large = good;
  large.resize(1024 * 1024);
  EXPECT_NO_THROW(CShortcut::Parse(CMemoryMedia(large)));
  large.push_back(0);
  EXPECT_THROW(CShortcut::Parse(CMemoryMedia(large)), NSMordel::XFormatViolation);
}

}  // namespace
