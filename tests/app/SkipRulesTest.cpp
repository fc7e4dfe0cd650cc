#include <gtest/gtest.h>

#include "tests/support/PackRun.h"

namespace NSTambraPacking {
namespace {

using NSTest::AlertsAre;
using NSTest::CLibrary;
using NSTest::CPackRun;
using CLines = std::vector<std::string>;
using CPaths = std::set<std::string>;

/// Two patches and a song with the samples that they use, and two samples that nobody does.
void FillLibrary(CLibrary& library) {
  library.WithSample("S/a.wav").WithSample("S/b.wav").WithSample("S/c.wav").WithSample("S/no.wav");
  library.WithBank("S/Bank.sf2").WithBank("S/No Bank.sf2");
  library.WithPatch("Good.dp01", {{"/S/a.wav"}}, "Good");
  library.WithPatch("Bad.dp02", {{"/S/b.wav"}, {"/S/c.wav"}}, "Bad");
  library.WithSong("Song.ops", {{"/S/Bank.sf2/piano.wav"}, {"/S/a.wav"}}, "Worse");
}

const CPaths kAll = {"Splash.jpg", "Good.dp01", "Bad.dp02", "Song.ops",   "S/a.wav",
                     "S/b.wav",    "S/c.wav",   "S/no.wav", "S/Bank.sf2", "S/No Bank.sf2"};
const std::string kProhibitedTitle = "Files that references prohibited device types:";
const std::string kSkippedTitle = "Items skipped due to referenced samples being skipped:";
const std::string kUnusedTitle = "Unreferenced samples:";
const std::string kUses = " uses the following prohibited device type(s): ";
const std::string kComplete = "Packing complete";

struct CSkipCase {
  std::vector<std::pair<std::string, std::string>> fInfo;
  std::string fEnding;
  CPaths fLeftOut;
  CLines fLog;
};

const std::pair<std::string, std::string> kBad = {"PROHIBITED_DEVICES", "Other; Worse ;;Bad"};
const std::pair<std::string, std::string> kWarnBad = {"WARN_ABOUT_PROHIBITED_DEVICES", "YES"};
const std::pair<std::string, std::string> kSkipBad = {"SKIP_PROHIBITED_DEVICES", "YES"};
const std::pair<std::string, std::string> kNoSampler = {"PROHIBITED_DEVICES", "SoundFont Sampler"};
const std::pair<std::string, std::string> kWarnUnused = {"WARN_ABOUT_UNUSED_SAMPLES", "YES"};
const std::pair<std::string, std::string> kSkipUnused = {"SKIP_UNUSED_SAMPLES", "YES"};
const std::pair<std::string, std::string> kPropagate = {
    "PROPAGATE_SAMPLE_SKIPPING_TO_PATCHES_AND_SONGS", "YES"};
const std::pair<std::string, std::string> kSkipItem = {"SKIP_ITEM", "s\\B.WAV"};

const CSkipCase kSkipCases[] = {
    {{}, "packed", {}, {kComplete}},
    {{kBad}, "packed", {}, {kComplete}},
    {{kBad, {"SKIP_PROHIBITED_DEVICES", "yes"}}, "packed", {}, {kComplete}},
    {{{"PROHIBITED_DEVICES", "bad;Good "}, kWarnBad},
     "notes",
     {},
     {kProhibitedTitle, "    Good.dp01" + kUses + "Good", kComplete}},
    {{kBad, kWarnBad},
     "notes",
     {},
     {kProhibitedTitle, "    Bad.dp02" + kUses + "Bad", "    Song.ops" + kUses + "Worse",
      kComplete}},
    {{kBad, kSkipBad}, "packed", {"Bad.dp02", "Song.ops"}, {kComplete}},
    {{kWarnUnused}, "notes", {}, {kUnusedTitle, "    S/No Bank.sf2", "    S/no.wav", kComplete}},
    {{kSkipUnused}, "packed", {"S/no.wav", "S/No Bank.sf2"}, {kComplete}},
    // What only documents use that are left out is not used.
    {{kBad, kSkipBad, kWarnBad, kSkipUnused, kWarnUnused},
     "notes",
     {"Bad.dp02", "Song.ops", "S/b.wav", "S/c.wav", "S/no.wav", "S/Bank.sf2", "S/No Bank.sf2"},
     {kProhibitedTitle, "    Bad.dp02" + kUses + "Bad", "    Song.ops" + kUses + "Worse",
      kUnusedTitle, "    S/b.wav", "    S/Bank.sf2", "    S/c.wav", "    S/No Bank.sf2",
      "    S/no.wav", kComplete}},
    {{kSkipItem},
     "silent",
     {},
     {"Unresolved references:", "    Bad.dp02", "        ref => S/b.wav", "Packing aborted"}},
    {{kSkipItem, kPropagate},
     "notes",
     {"S/b.wav", "Bad.dp02"},
     {kSkippedTitle, "    Bad.dp02", kComplete}},
    {{kSkipItem, kPropagate, kWarnUnused},
     "notes",
     {"S/b.wav", "Bad.dp02"},
     {kSkippedTitle, "    Bad.dp02", kUnusedTitle, "    S/c.wav", "    S/No Bank.sf2",
      "    S/no.wav", kComplete}},
    {{{"SKIP_ITEM", "Bad.dp02; Song.ops"}, {"SKIP_ITEM", "S/no.wav"}},
     "packed",
     {"Bad.dp02", "Song.ops", "S/no.wav"},
     {kComplete}},
    // A bank whose player is prohibited is a sample that is left out.
    {{kNoSampler, kSkipBad},
     "silent",
     {},
     {"Unresolved references:", "    Song.ops", "        ref => S/Bank.sf2/piano.wav",
      "Packing aborted"}},
    {{kNoSampler, kSkipBad, kPropagate},
     "notes",
     {"S/Bank.sf2", "S/No Bank.sf2", "Song.ops"},
     {kSkippedTitle, "    Song.ops", kComplete}},
    {{{"SKIP_ITEM", "S"}, kPropagate},
     "notes",
     {"Good.dp01", "Bad.dp02", "Song.ops", "S/a.wav", "S/b.wav", "S/c.wav", "S/no.wav",
      "S/Bank.sf2", "S/No Bank.sf2"},
     {kSkippedTitle, "    Bad.dp02", "    Good.dp01", "    Song.ops", kComplete}},
};

TEST(SkipRules, LeaveOutAndTellAsTheOptionsSay) {
  for (const CSkipCase& test : kSkipCases) {
    SCOPED_TRACE(testing::PrintToString(test.fInfo));
    CLibrary library;
    FillLibrary(library);
    for (const auto& [key, value] : test.fInfo) library.WithInfo(key, value);
    CPackRun run(library);
    ASSERT_EQ(run.Pack(), test.fEnding);
    EXPECT_EQ(run.Log(), test.fLog);
    if (test.fEnding == "silent") continue;
    CPaths expected = kAll;
    for (const std::string& path : test.fLeftOut) expected.erase(path);
    CPaths packed;
    for (const auto& [path, bytes] : run.Packed()) packed.insert(path);
    EXPECT_EQ(packed, expected);
    EXPECT_EQ(run.fInformation.fFileCount, expected.size());
  }
}

/// The outcome must not depend on which of the documents comes first.
TEST(SkipRules, PropagateFromDocumentToDocument) {
  for (const auto& [outer, inner] :
       {std::pair("A.dp01", "B.dp01"), std::pair("B.dp01", "A.dp01")}) {
    CLibrary library;
    library.WithSample("S/b.wav");
    library.WithPatch(outer, {{std::string("/") + inner}}).WithPatch(inner, {{"/S/b.wav"}});
    for (const auto& [key, value] : {kSkipItem, kPropagate}) library.WithInfo(key, value);
    CPackRun run(library);
    EXPECT_EQ(run.Pack(), "notes") << outer;
    EXPECT_EQ(run.Log(), (CLines{kSkippedTitle, "    A.dp01", "    B.dp01", kComplete})) << outer;
  }
}

/// What is left out counts as failed, unresolved or external no more, whatever was found in it.
TEST(SkipRules, ForgetTheFaultsOfWhatIsLeftOut) {
  CLibrary library;
  library.WithSample("S/a.wav").WithSample("S/no.wav", 3).WithFile("S/no.pipe", "x");
  library.WithPatch("Bad.dp01", {{"/gone.wav"}, {.fRelative = "/x", .fTambra = "Other"}}, "Bad");
  library.WithPatch("User.dp02", {{"/S/a.wav"}, {"/gone.wav"}});
  for (const auto& [key, value] : {kBad, kSkipBad, kPropagate, kSkipUnused}) {
    library.WithInfo(key, value);
  }
  library.WithInfo("SKIP_ITEM", "S/a.wav;S/no.pipe");
  CPackRun run(library);
  EXPECT_EQ(run.Pack(), "notes");
  EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, {"6 (1 files in the Tambra)"}));
  EXPECT_EQ(run.Log(), (CLines{kSkippedTitle, "    User.dp02", kComplete}));
}

}  // namespace
}  // namespace NSTambraPacking
