#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/InformationEditor.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

using namespace std::string_literals;
using Files = std::map<std::string, std::string>;

constexpr const char* kUtf8 = "CHARACTER_ENCODING=\"UTF-8\"\r\n";

TEST(InformationEditor, ChangesOneTextAndNothingElse) {
  const std::u16string euro = u"5 €";
  const std::u16string snow = u"雪";
  const std::string comments = kUtf8 + "two\n\"lines\""s;
  const std::string declared = "character_encoding=\"utf-8\"\n\n";
  struct CCase {
    Files fBefore;
    std::u16string fWanted;
    Files fChanged;
    std::u16string CPackageInformation::*fText = &CPackageInformation::fName;
  };
  const std::vector<CCase> cases{
      // In its place; of a repeated key the last counts; what is beside it stays, sound or not.
      {{{"Info.txt", "X=\"\xFF\"\n NAME = \"a\"NAME=\"old\" ;\r\nURL=\"u\""}},
       euro,
       {{"Info.txt", "X=\"\xFF\"\n NAME = \"a\"NAME=\"5 \x80\" ;\r\nURL=\"u\""}}},
      {{{"INFO.TXT", "\xEF\xBB\xBFNAME=\"\xC3\"\xFF"}},
       snow,
       {{"INFO.TXT", "\xEF\xBB\xBFNAME=\"\xE9\x9B\xAA\"\xFF"}}},
      {{{"INFO.TXT", "\xFF\xFEN\0A\0M\0E\0=\0\"\0a\0\"\0\x01\xD8"s}},
       snow,
       {{"INFO.TXT", "\xFF\xFEN\0A\0M\0E\0=\0\"\0\xEA\x96\"\0\x01\xD8"s}}},
      // An encoding that has no such character gives way, with its declaration.
      {{{"INFO.TXT", "CHARACTER_ENCODING=\"x\" NAME=\"\xFC\" A=\"\xFC\""}},
       snow,
       {{"INFO.TXT", kUtf8 + "NAME=\"\xE9\x9B\xAA\" A=\"\xC3\xBC\""s}}},
      // A text of its own file stays there; one that goes does not come back from the other place.
      {{{"NAME.TXT", " a\r\n"}, {"INFO.TXT", "NAME=\"b\""}}, u"ü", {{"NAME.TXT", "\xFC"}}},
      {{{"NAME.TXT", declared + "a"}}, snow, {{"NAME.TXT", declared + "\xE9\x9B\xAA"}}},
      {{{"NAME.TXT", "a"}, {"INFO.TXT", "NAME=\"b\""}},
       u"",
       {{"NAME.TXT", ""}, {"INFO.TXT", "NAME=\"\""}}},
      // New texts: a key at the end; a file where a key cannot hold it, or would never be read.
      {{{"INFO.TXT", "A=\"1\"\nURL=\"u\""}, {"NAME.TXT", " "}},
       u" n ",
       {{"INFO.TXT", "A=\"1\"\nURL=\"u\"\nNAME=\"n\"\n"}}},
      {{}, u"n", {{"INFO.TXT", kUtf8 + "NAME=\"n\"\r\n"s}}},
      {{{"INFO.TXT", "COMMENTS=\"c\""}},
       u"two\n\"lines\"",
       {{"COMMENTS.TXT", comments}},
       &CPackageInformation::fComments},
      {{{"INFO.TXT", "URL=\"never closed"}}, u"n", {{"NAME.TXT", kUtf8 + "n"s}}},
      {{{"NAME.TXT", "a"}},
       u"CHARACTER_ENCODING=\"x\" y",
       {{"NAME.TXT", kUtf8 + "CHARACTER_ENCODING=\"x\" y"s}}},
      {{{"NAME.TXT", " a "}}, u"a\n", {}},
  };
  for (const CCase& each : cases) {
    const NSTest::CTemporaryFolder folder;
    for (const auto& [file, bytes] : each.fBefore) folder.Write(file, bytes);
    std::vector<CInformationFile> files;
    for (const auto& [file, bytes] : each.fBefore) {
      files.push_back({std::u16string(file.begin(), file.end()), bytes});
    }
    CPackageInformation wanted = ReadPackageTexts(files).fInformation;
    wanted.*each.fText = each.fWanted;
    SaveInformation(folder.Path(), wanted);
    Files expected = each.fBefore;
    for (const auto& [file, bytes] : each.fChanged) expected[file] = bytes;
    Files found;
    for (const auto& item : std::filesystem::directory_iterator(folder.Path())) {
      std::ifstream stream(item.path(), std::ios::binary);
      found[NSTest::Utf8Of(item.path().filename())] = {std::istreambuf_iterator<char>(stream), {}};
    }
    EXPECT_EQ(found, expected);
  }
}

}  // namespace
}  // namespace NSTambraPacking
