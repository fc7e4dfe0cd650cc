#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/InfoKeyFile.h"
#include "app/InfoText.h"
#include "app/PackageInformation.h"
#include "app/VersionText.h"

namespace NSTambraPacking {
namespace {

using namespace std::string_literals;

/// `text`, ASCII alone, as UTF-16 with the high or the low byte first.
std::string Utf16(std::string_view text, bool bigEndian) {
  std::string bytes;
  for (const char byte : text) {
    bytes += bigEndian ? std::string{'\0', byte} : std::string{byte, '\0'};
  }
  return bytes;
}

TEST(InfoText, TheFirstBytesTellTheEncoding) {
  const std::string utf16 = "CHARACTER_ENCODING=\"UTF-16\"";
  const std::vector<std::pair<std::string, std::u16string>> cases{
      {"", u""},
      {"\xFC", u"ü"},
      {"\xEF\xBB", u"ï»"},
      {"\xEF\xBB\xBF", u""},
      {"\xEF\xBB\xBFGro\xC3\x9F", u"Groß"},
      {"\xEF\xBB\xBF\xEF\xBB\xBFx", u"\uFEFFx"},
      {"\xFE\xFF", u""},
      {"\xFF\xFE"s, u""},
      {"\xFE\xFF\0\xE4x"s, u"ä\uFFFD"},
      {"\xFF\xFE\x41\xD8z\0"s, u"\uFFFDz"},
      {"Character_Encoding=\"utf-8\" \t\r\n\xC3\x9F\r\n", u"ß\r\n"},
      {"CHARACTER_ENCODING=\"UTF-8\"", u""},
      {"CHARACTER_ENCODING=\"UTF-8", u"CHARACTER_ENCODING=\"UTF-8"},
      {"CHARACTER_ENCODING=\"UTF-7\"\n\xC3\x9F", u"ÃŸ"},
      {utf16 + "\n\xC3\x9F", u"ÃŸ"},
      {Utf16(utf16 + "\na", true) + "\x20\xAC"s, u"a€"},
      {Utf16("character_encoding=\"utf-16\"", true), u""},
      {Utf16(utf16 + " a", false) + "\xAC\x20"s, u"a€"},
      {Utf16("CHARACTER_ENCODING=\"UTF-8\"", false),
       u"C\0H\0A\0R\0A\0C\0T\0E\0R\0_\0E\0N\0C\0O\0D\0I\0N\0G\0=\0\"\0U\0T\0F\0-\0008\0\"\0"s},
      {"a\xEF\xBB\xBF", u"aï»¿"},
      {"\x81\x8D\x80", u"\u0081\u008D€"},
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(DecodeInformationText(bytes), text) << testing::PrintToString(bytes);
  }
}

TEST(InfoKeyFile, FollowsItsFourStates) {
  using CPairs = std::vector<std::pair<std::u16string, std::u16string>>;
  const std::vector<std::pair<const char16_t*, CPairs>> cases{
      {u" \t\r\nNAME = \"a b\" URL=\"c\"", {{u"NAME", u"a b"}, {u"URL", u"c"}}},
      {u"NAME\r\nrubbish = here \"two\r\nlines\"", {{u"NAME", u"twolines"}}},
      {u"A=\"1\"B\"2\"\n\"3\"", {{u"A", u"1"}, {u"B\"2\"", u"3"}}},
      {u"A\tB=\"1\"", {{u"A\tB", u"1"}}},
      {u"=A \"1\" \"B = \"2\"", {{u"=A", u"1"}, {u"\"B", u"2"}}},
      {u"A=\"\" B=\"open", {{u"A", u""}}},
      {u"A", {}},
  };
  for (const auto& [text, pairs] : cases) EXPECT_EQ(ParseInfoKeyFile(text), pairs);
}

TEST(PackageTexts, AFolderAsPublishersWriteIt) {
  const std::string comments = "\xFF\xFE"s + Utf16("Erste Zeile\r\nzweite ", false) +
                               "\xE5\x65\x2C\x67"s + Utf16(" Zeile\r\n", false);
  const auto [information, options] = ReadPackageTexts({
      {u"INFO.TXT",
       "CHARACTER_ENCODING=\"UTF-8\"\r\nNAME = \"overruled by NAME.TXT\"\r\n"
       "COPYRIGHT = \"\xC2\xA9 2026 Jemand\"\r\nPROHIBITED_DEVICES = \"Forbidden One; Forbidden "
       "Two;;\"\r\nWARN_ABOUT_PROHIBITED_DEVICES=\"YES\"\r\nSKIP_UNUSED_SAMPLES=\"yes\"\r\n"
       "WARN_ABOUT_UNUSED_SAMPLES = \"YES\"\r\nSKIP_ITEM = \"Trash; Loops\\old.wav\"\r\nODD = "
       "\"x\"\r\n"},
      {u"NAME.TXT", "\xEF\xBB\xBFGro\xC3\x9F\x65 Sammlung \xE2\x80\x93 1\r\n"},
      {u"Url.txt", "https://example.org/lib?a=b\n"},
      {u"URL.TXT", "second of its name"},
      {u"VERSION.TXT", "character_encoding=\"Windows-1252\"\r\n1.1.0b3\r\n"},
      {u"comments.TXT", comments},
  });
  EXPECT_EQ(information.fName, u"Große Sammlung – 1");
  EXPECT_EQ(information.OutputFileName(), u"Große Sammlung – 1.tmb");
  EXPECT_EQ(information.fCopyright, u"© 2026 Jemand");
  EXPECT_EQ(information.fURL, u"https://example.org/lib?a=b");
  EXPECT_EQ(information.fComments, u"Erste Zeile\r\nzweite 日本 Zeile");
  EXPECT_EQ(ParseVersionText(information.fVersion).Text(), "1.1.0b3");
  EXPECT_EQ(options.fProhibitedDevices,
            (std::vector<std::u16string>{u"Forbidden One", u"Forbidden Two"}));
  EXPECT_TRUE(options.fWarnAboutProhibitedDevices && options.fWarnAboutUnusedSamples);
  EXPECT_FALSE(options.fSkipProhibitedDevices || options.fSkipUnusedSamples ||
               options.fPropagateSampleSkipping);
  EXPECT_TRUE(options.fSkipItems.Hold(u"TRASH/deep/file.wav"));
  EXPECT_TRUE(options.fSkipItems.Hold(u"loops/OLD.WAV"));
  EXPECT_FALSE(options.fSkipItems.Hold(u"Loops"));
  EXPECT_FALSE(options.fSkipItems.Hold(u"Trashes/a"));
}

TEST(PackageTexts, EmptyFilesCountAsAbsentAndRepeatedKeys) {
  const auto [information, options] = ReadPackageTexts({
      {u"name.txt", " \r\n\t"},
      {u"NAME.TXT", "too late"},
      {u"info.txt",
       "NAME=\"first\" NAME=\" last \" VERSION=\"1\" SKIP_ITEM=\"a\" SKIP_ITEM=\"/b//c/; ;\" "
       "PROHIBITED_DEVICES=\"x\" PROHIBITED_DEVICES=\" y \" name=\"lower\" "
       "SKIP_UNUSED_SAMPLES=\"YES\" SKIP_UNUSED_SAMPLES=\"NO\" SKIP_PROHIBITED_DEVICES=\"YES\" "
       "PROPAGATE_SAMPLE_SKIPPING_TO_PATCHES_AND_SONGS=\"YES\""},
  });
  EXPECT_EQ(information.fName, u" last ");
  EXPECT_EQ(options.fProhibitedDevices, std::vector<std::u16string>{u"y"});
  EXPECT_FALSE(options.fSkipUnusedSamples);
  EXPECT_TRUE(options.fSkipProhibitedDevices && options.fPropagateSampleSkipping);
  EXPECT_TRUE(options.fSkipItems.Hold(u"A"));
  EXPECT_TRUE(options.fSkipItems.Hold(u"b/c"));
  EXPECT_FALSE(options.fSkipItems.Hold(u"b"));

  for (const char16_t* name : {u"Info.txt", u"NAME.TXT", u"url.txt", u"Copyright.TXT"}) {
    EXPECT_TRUE(IsInformationFile(name));
  }
  for (const char16_t* name : {u"INFO.TXT2", u"INFO", u"README.TXT"}) {
    EXPECT_FALSE(IsInformationFile(name));
  }
}

TEST(PackageInformation, OutputNamesAreFileNamesOnEverySystem) {
  CPackageInformation information;
  EXPECT_EQ(information.OutputFileName(), u"output.tmb");
  for (const std::u16string& name : {u"A"s, u" lead"s, u"a.b"s, u"console"s, u"COM"s, u"com12"s,
                                     u"[x] ^0"s, u".hidden"s, std::u16string(251, u'a')}) {
    information.fName = name;
    EXPECT_EQ(information.OutputFileName(), name + u".tmb");
  }
  std::vector<std::u16string> refused = {
      u".",  u"..",   u"a/b",     u"a\\b", u"a:b", u"a*",  u"a?",      u"\"a",  u"<a",   u"a>",
      u"a|", u"a\tb", u"a\u0085", u"a.",   u"a ",  u"NUL", u"con.old", u"Lpt1", u"COM²", u"aux .x"};
  refused.insert(refused.end(), {std::u16string(252, u'a'), std::u16string(126, u'ä')});
  for (const std::u16string& name : refused) {
    information.fName = name;
    EXPECT_THROW(information.OutputFileName(), NSMordel::XFormatViolation);
  }
}

TEST(VersionText, ReadsVersionsAndRefusesTheRest) {
  const std::vector<std::pair<const char16_t*, const char*>> good{
      {u"", "1.0.0"},        {u"1", "1.0.0"},         {u"1.2", "1.2.0"},
      {u"1.1.9", "1.1.9"},   {u"1b3", "1.0.0b3"},     {u"1.2d0", "1.2.0d0"},
      {u"1.2.0f0", "1.2.0"}, {u"1.1.0f2", "1.1.0f2"}, {u"0.4294967295.01a7", "0.4294967295.1a7"},
  };
  for (const auto& [text, version] : good) {
    EXPECT_EQ(ParseVersionText(text).Text(), version);
  }
  for (const char16_t* text :
       {u" 1", u"1 ", u"a", u"1.", u"1..2", u"1.2.", u"1.2.3.4", u"1.0b", u"1.0c1", u"1.0B1", u"-1",
        u"+1", u"1.+1", u"1.0.4294967296", u"1.0b3x", u"１", u"1,0"}) {
    EXPECT_THROW(ParseVersionText(text), NSMordel::XFormatViolation)
        << testing::PrintToString(text);
  }
  for (const char16_t* text : {u"1.2.0f1", u"1.2.1d0", u"1.3", u"2", u"4294967295"}) {
    EXPECT_THROW(ParseVersionText(text), NSMordel::XVersionTooNew) << testing::PrintToString(text);
  }
  const CTextResources texts;
  EXPECT_EQ(DisplayVersion(texts, ParseVersionText(u"1.2")), u"1.2.0");
  EXPECT_EQ(DisplayVersion(texts, ParseVersionText(u"1.1b3")), u"1.1.0b3");
  EXPECT_EQ(DisplayVersion(texts, ParseVersionText(u"1.1f3")), u"1.1.0f3");
}

}  // namespace
}  // namespace NSTambraPacking
