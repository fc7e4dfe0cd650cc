#include <gtest/gtest.h>

#include "app/ReferenceAdvice.h"
#include "references/ChunkDocument.h"
#include "tests/support/PackRun.h"
#include "tests/support/ShortcutBuilder.h"

namespace NSTambraPacking {
namespace {

using NSTest::CLibrary;
using NSTest::CPackRun;
using NSTest::CReferenceText;
using NSTolbrook::Utf8FromText;
using CLines = std::vector<std::string>;

std::string Print(const CSampleReference& reference) {
  std::string printed =
      Utf8FromText(reference.fRelativePath.Print() + u" | " + reference.fDatabasePath.Print() +
                   u" | " + reference.fTambraName + u" " + reference.fTambraURL);
  return reference.fAbsolutePath.IsValid() ? printed + " and an absolute path" : printed;
}

struct CRelocation {
  const char* fDocument;
  CReferenceText fReference;
  std::string fPacked;  ///< the forms as they stand in the package
};

const CRelocation kRelocations[] = {
    {"Top.dp01", {"/Sub/a.wav"}, "Sub/a.wav | Kit:Sub/a.wav | Kit u"},
    {"Same.dp01", {"/top.wav"}, "top.wav | Kit:top.wav | Kit u"},
    {"A/B/Up.ons", {"/Sub/a.wav", 2}, "../../Sub/a.wav | Kit:Sub/a.wav | Kit u"},
    {"A/B/Near.ops", {"/C/n.wav", 1}, "../C/n.wav | Kit:A/C/n.wav | Kit u"},
    {"A/B/Case.ostrum", {"/c/N.WAV", 1}, "../C/n.wav | Kit:A/C/n.wav | Kit u"},
    {"A/Out.dp03", {"/in/top.wav", 2}, "../top.wav | Kit:top.wav | Kit u"},
    {"A/Bank.dp04", {"/X.sf2/p/q.wav", 1}, "../X.sf2/p/q.wav | Kit:X.sf2/p/q.wav | Kit u"},
    {"A/Link.dp05", {"/way/a.wav", 1}, "../Sub/a.wav | Kit:Sub/a.wav | Kit u"},
    {"A/Data.dp06",
     {.fRelative = "/no.wav", .fTambra = "Old Kit", .fDatabase = "/Sub/a.wav"},
     "../Sub/a.wav | Kit:Sub/a.wav | Kit u"},
    {"A/Full.dp07", {.fAbsolute = "/home/me/Sub/a.wav"}, "../Sub/a.wav | Kit:Sub/a.wav | Kit u"},
    {"A/Here.dp08",
     {.fRelative = "/no.wav", .fTambra = "Kit", .fDatabase = "/not/here.wav"},
     "*invalid relative path* | Kit:not/here.wav | Kit u"},
};

TEST(JobReferences, AreRewrittenIntoThePackage) {
  CLibrary library;
  library.WithFile("URL.TXT", "u").WithSample("top.wav").WithSample("Sub/a.wav");
  library.WithSample("A/C/n.wav").WithBank("X.sf2");
  library.WithFile("way.lnk", NSTest::MakeShortcut(u".\\Sub", u""));
  for (const CRelocation& test : kRelocations) library.WithPatch(test.fDocument, {test.fReference});
  library.WithPatch("Both.dp11", {{"/no.wav", 0, "Other"}, {"/top.wav"}, {"/nn", 0, "Other"}});
  CPackRun run(library, {{23, true}, {18, true}});
  run.fSettings.fJobs = 2;
  EXPECT_EQ(run.Pack(), "problems");
  const auto packed = run.Packed();
  for (const CRelocation& test : kRelocations) {
    SCOPED_TRACE(test.fDocument);
    const auto found = packed.find(test.fDocument);
    ASSERT_NE(found, packed.end());
    const CChunkDocument document(NSTest::AsMedia(found->second), EChunkDocumentKind::kPatch);
    ASSERT_EQ(document.References().size(), 1U);
    EXPECT_EQ(Print(document.References()[0].Reference()), test.fPacked);
  }
  EXPECT_FALSE(packed.contains("Both.dp11"));
  const CLines log = run.Log();
  const CLines expected = {"Unresolved references:", "    Both.dp11", "        ref => no.wav",
                           "        ref => nn"};
  EXPECT_EQ(CLines(log.begin(), log.begin() + 4), expected) << "every one that leads nowhere";
}

struct CAdviceCase {
  const char* fWhat;
  CReferenceText fReference;
  CLines fHints;
};

TEST(JobReferences, ComeWithAdviceWhenTheyLeadNowhere) {
  const CAdviceCase cases[] = {
      {"moved", {"/Old/kick.wav"}, {"same name at “Drums/kick.wav”"}},
      {"other extension", {"/Drums/kick.aif"}, {"found under another name: “Drums/kick.wav”"}},
      {"deleted", {"/Drums/zzzzzz.wav"}, {}},
      {"moved, in other case", {"/KICK.wav"}, {"same name in other case at “Drums/kick.wav”"}},
      {"left out by its name",
       {"/Drums/gone.wav"},
       {"the file “Drums/gone.wav” is there but was left out by SKIP_ITEM"}},
      {"in a folder that is left out",
       {"/Trash/t.wav"},
       {"the file “Trash/t.wav” is there but was left out by SKIP_ITEM"}},
      {"unsupported",
       {"/Art/x.png"},
       {"the file “Art/x.png” is there but is of an unsupported type"}},
      {"device",
       {"/bad.sf2"},
       {"the file “bad.sf2” is there but was left out for its prohibited device"}},
      {"outside", {"/else/other.wav", 3}, {"lies outside the input folder"}},
  };
  CLibrary library;
  library.WithSample("Drums/kick.wav").WithSample("Drums/gone.wav").WithSample("Trash/t.wav");
  library.WithFile("Art/x.png", "x").WithBank("bad.sf2");
  library.WithInfo("SKIP_ITEM", "Drums/gone.wav;trash")
      .WithInfo("PROHIBITED_DEVICES", "SoundFont Sampler");
  library.WithInfo("SKIP_PROHIBITED_DEVICES", "YES");
  NSTest::CReferenceTexts references = {{"/DRUMS/Kick.WAV"}};  // found: nothing to say
  for (const CAdviceCase& test : cases) references.push_back(test.fReference);
  library.WithPatch("P.dp01", references);
  library.WithPatch("In.dp02", {{.fRelative = "/no", .fTambra = "Kit", .fDatabase = "/no"}});
  CPackRun run(library, {{21, true}});
  EXPECT_EQ(run.Check(), "aborted: tambra has unresolved entries");
  const auto advice = AdviseOnReferences(run.fTexts, *run.fPacker.State());
  ASSERT_EQ(advice.size(), std::size(cases));
  for (std::size_t i = 0; i < advice.size(); ++i) {
    SCOPED_TRACE(cases[i].fWhat);
    CLines hints;
    for (const std::u16string& hint : advice[i].fHints) hints.push_back(Utf8FromText(hint));
    EXPECT_EQ(hints, cases[i].fHints);
    EXPECT_EQ(advice[i].fEntry, u"P.dp01");
  }
}

}  // namespace
}  // namespace NSTambraPacking
