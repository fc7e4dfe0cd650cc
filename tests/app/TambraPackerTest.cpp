#include <gtest/gtest.h>
#include <thread>

#include "tests/support/PackRun.h"
#include "tests/support/SystemDifferences.h"

namespace NSTambraPacking {
namespace {

using NSTest::AlertsAre;
using NSTest::CLibrary;
using NSTest::CPackRun;
using NSTest::CReferenceTexts;
using CLines = std::vector<std::string>;

/// The library that most tests change: a used sample, and a patch that refers to it.
void AddContent(CLibrary& library) {
  library.WithSample("Samples/a.wav");
  library.WithPatch("P.dp01", {{"/Samples/a.wav"}});
}

using CChange = std::function<void(CLibrary&)>;

CChange With(std::string path, std::string text) {
  return [=](CLibrary& library) { library.WithFile(path, text); };
}
CChange WithInfo(std::string key, std::string value) {
  return [=](CLibrary& library) { library.WithInfo(key, value); };
}
CChange WithPatch(CReferenceTexts references) {
  return [=](CLibrary& library) { library.WithPatch("P.dp01", references); };
}
/// The splash with this name and these edges, in place of the one that was there.
CChange WithSplash(std::string path, std::uint32_t edge = 64) {
  return [=](CLibrary& library) { library.Without("Splash.jpg").WithSplash(path, edge); };
}
CChange Without(std::string path) {
  return [=](CLibrary& library) { library.Without(path); };
}
CChange Both(CChange one, CChange other) {
  return [=](CLibrary& library) { one(library), other(library); };
}

/// What ends a run before anything is written, and the alert that tells of it.
struct CRefusal {
  const char* fWhat;
  CChange fChange;
  std::string fAlert;
  bool fIsChecked = true;  ///< a check finds it, too
};

const CRefusal kRefusals[] = {
    {"no name", Without("NAME.TXT"), "4"},
    {"an empty name", With("NAME.TXT", " \n"), "4"},
    {"no splash", Without("Splash.jpg"), "12"},
    {"neither", Both(Without("Splash.jpg"), Without("NAME.TXT")), "4"},
    {"a splash that is left out", WithInfo("SKIP_ITEM", "SPLASH.JPG"), "12"},
    {"a splash in a folder", WithSplash("Art/Splash.jpg"), "12"},
    {"a wrong size, and no name", Both(WithSplash("Splash.jpg", 63), Without("NAME.TXT")),
     "13 size 64x64 pixels"},
    {"a splash that is no picture", With("Splash.jpg", "GIF89a"), "13"},
    {"a name that no file can have", With("NAME.TXT", "a/b"), "303 “a/b”"},
    {"no version", With("VERSION.TXT", "first"), "301 “first”"},
    {"a later version", WithInfo("VERSION", "1.2.1"), "302 version 1.2.1 "},
    {"a broken shortcut", With("S/x.lnk", "rubbish"), "26 x.lnk"},
    {"a file that no package can hold",
     [](CLibrary& l) {
       l.WithFile("huge.pad", "x");
       std::filesystem::resize_file(l.Input() / "huge.pad", std::uintmax_t{5} << 30);
     },
     "305 5368709120 bytes long", false},
};

TEST(TambraPacker, RefusesWhatCannotBePackedBeforeItWrites) {
  for (const CRefusal& test : kRefusals) {
    SCOPED_TRACE(test.fWhat);
    CLibrary library;
    AddContent(library);
    test.fChange(library);
    CPackRun run(library);
    EXPECT_EQ(run.Pack(), "failed");
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, {test.fAlert}));
    EXPECT_EQ(run.Log(), CLines{});
    EXPECT_TRUE(run.OutputFiles().empty());
    EXPECT_EQ(run.fInformation.fName, u"");
    if (!test.fIsChecked) continue;
    CPackRun check(library);
    EXPECT_EQ(check.Check(), "failed");
    EXPECT_TRUE(AlertsAre(check.fAlerts.fShown, {test.fAlert}));
  }
}

/// How a run ends that gets further.
struct CEnding {
  const char* fWhat;
  CChange fChange;
  NSTest::CScriptedAlerts::CAnswers fAnswers;
  std::string fEnding;
  CLines fAlerts;
  CLines fLog;
  bool fWarn = true;
  const char* fCheck = nullptr;  ///< how a check of the same ends, where that is tried
};

const CReferenceTexts kOther = {{.fRelative = "/x.wav", .fTambra = "Other"}};
const CReferenceTexts kTwoOthers = {{.fRelative = "/x.wav", .fTambra = "Other"},
                                    {.fRelative = "/y.wav", .fTambra = "Third"},
                                    {.fRelative = "/z.wav", .fTambra = "Other"}};
const CReferenceTexts kItself = {
    {.fRelative = "/no.wav", .fTambra = "Kit", .fDatabase = "/no.wav"}};
const CLines kPacked = {"Packing complete"};
const CLines kOtherLog = {"External Tambra references:", "    P.dp01", "        Other",
                          "Packing aborted"};
const CLines kOtherPackedLog = {"Unresolved references:",
                                "    P.dp01",
                                "        ref => x.wav",
                                "External Tambra references:",
                                "    P.dp01",
                                "        Other",
                                "Packing complete"};
const CLines kStrayLog = {"Failed validating:", "    Art/stray.png", "Packing aborted"};
const CLines kSampleLog = {"Failed validating:", "    Samples/a.wav", "Packing aborted"};
const CLines kKindLog = {"Failed validating:", "    P.dp01", "Packing complete"};
const CLines kAllLog = {"Failed validating:",         "    bad.dp02",   "    Samples/a.wav",
                        "Unresolved references:",     "    S.ops",      "        ref => no.wav",
                        "        ref => ../gone.wav", "Packing aborted"};
const CLines kSeveralLog = {"External Tambra references:",
                            "    P.dp01",
                            "        Other",
                            "        Third",
                            "    S.ons",
                            "        Other",
                            "Packing aborted"};
const std::string kBrokenTitle =
    "Broken references in the finished Tambra (usually caused by faults of the Tambra packer "
    "itself):";
const CLines kBrokenLog = {kBrokenTitle, "    P.dp01", "        ref => Kit:no.wav",
                           "Packing complete"};

const CChange kThreeChannels = [](CLibrary& l) { l.WithSample("Samples/a.wav", 3); };
const CChange kFailedAndUnresolved = [](CLibrary& l) {
  l.WithSample("Samples/a.wav", 3).WithSong("S.ops", {{"/no.wav"}, {"/gone.wav", 1}});
  l.WithFile("bad.dp02", "FORM");
};
const CChange kStray = With("Art/stray.png", "x");
const std::string kSuccess = "5 The Tambra file has been packed successfully! 3 files were added.";
const char* const kFailedCheck = "aborted: tambra has failed entries";

const CEnding kEndings[] = {
    {"clean", [](CLibrary&) {}, {}, "packed", {kSuccess}, kPacked, true, "passed"},
    {"a splash in other case", WithSplash("SPLASH.JPG"), {}, "packed", {"5"}, kPacked},
    {"a stage", With("VERSION.TXT", "1.2.0b3"), {}, "packed", {"5"}, kPacked},
    {"left out", kStray, {{21, true}}, "packed", {"21 “Art/stray.png”", "5 3 files"}, kPacked},
    {"not left out", kStray, {{21, false}}, "silent", {"21", "7"}, kStrayLog},
    {"three channels", kThreeChannels, {}, "silent", {"7"}, kSampleLog, true, kFailedCheck},
    {"all", kFailedAndUnresolved, {}, "silent", {"7"}, kAllLog, true, kFailedCheck},
    {"one other package, accepted",
     WithPatch(kOther),
     {{18, true}},
     "problems",
     {"18 “P.dp01” refers to the Tambra Other.", "7"},
     kOtherPackedLog},
    {"refused",
     WithPatch(kOther),
     {{18, false}},
     "silent",
     {"18", "7"},
     kOtherLog,
     true,
     "aborted: "},
    {"not asked about", WithPatch(kOther), {}, "problems", {"7"}, kOtherPackedLog, false},
    {"several other packages",
     Both(WithPatch(kTwoOthers), [](CLibrary& l) { l.WithSong("S.ons", kOther); }),
     {{23, true}, {18, false}},
     "silent",
     {"23 the Tambras Other, Third.", "18 “S.ons”", "7"},
     kSeveralLog},
    {"an unknown kind",
     WithPatch({{"/Samples/a.wav", 0, "", 14}}),
     {},
     "problems",
     {"7"},
     kKindLog},
    {"into this package, which has it not", WithPatch(kItself), {}, "problems", {"7"}, kBrokenLog},
};

TEST(TambraPacker, EndsEachRunAsItShould) {
  for (const CEnding& test : kEndings) {
    SCOPED_TRACE(test.fWhat);
    CLibrary library;
    AddContent(library);
    test.fChange(library);
    if (test.fCheck != nullptr) {
      CPackRun check(library, test.fAnswers, test.fWarn);
      EXPECT_EQ(check.Check(), test.fCheck);
      EXPECT_FALSE(std::filesystem::exists(library.Output()));
    }
    CPackRun run(library, test.fAnswers, test.fWarn);
    EXPECT_EQ(run.Pack(), test.fEnding);
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, test.fAlerts));
    EXPECT_EQ(run.Log(), test.fLog);
    const bool isPacked = test.fEnding == "packed" || test.fEnding == "problems";
    EXPECT_EQ(run.OutputFiles().contains("Kit.tmb"), isPacked);
    EXPECT_EQ(run.OutputFiles().size(), isPacked ? 2U : 1U);
    EXPECT_EQ(run.fInformation.fName, isPacked ? u"Kit" : u"");
  }
}

TEST(TambraPacker, AsksBeforeItReplaces) {
  for (const bool replace : {false, true}) {
    CLibrary library;
    library.Folder().Write("out/Kit.tmb", std::string_view("old"));
    CPackRun run(library, {{20, replace}});
    EXPECT_EQ(run.Pack(), replace ? "packed" : "silent");
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, replace ? CLines{"20 “Kit.tmb”", "5"}  //
                                                      : CLines{"20 “Kit.tmb”"}));
    EXPECT_EQ(run.PackageBytes() == "old", !replace);
    EXPECT_EQ(run.OutputFiles().size(), replace ? 2U : 1U);
  }
  CLibrary nameless;
  nameless.Without("NAME.TXT").Folder().Write("out/output.tmb", std::string_view("old"));
  CPackRun run(nameless, {{20, false}});
  EXPECT_EQ(run.Pack(), "silent") << "asked about before the name is known";
}

TEST(TambraPacker, RefusesAnOutputFolderInsideTheInput) {
  CLibrary library;
  const bool isLinked = NSTest::MakeLink(library.Input(), library.Folder().Path() / "way");
  for (const char* output : {"in", "in/new/out", isLinked ? "way/new" : "IN", "other/../in/x"}) {
    CPackRun run(library.Input(), library.Folder().Path() / output);
    EXPECT_EQ(run.Pack(), "failed") << output;
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, {"304"}));
    EXPECT_FALSE(std::filesystem::exists(library.Input() / "new"));
  }
  CPackRun beside(library.Input(), library.Folder().Path() / "in2/deep");
  EXPECT_EQ(beside.Pack(), "packed");
}

TEST(TambraPacker, AFileThatChangesAfterItWasVerified) {
  const NSTest::Bytes later = NSTest::Joined({NSTest::VersionBytes(2), NSTest::U32(12)});
  const auto laterPatch = NSTest::Group("FORM", "PTCH", {NSTest::Chunk("REFE", later)});
  const NSTest::Bytes damaged = NSTest::AsBytes("RIFF");
  const NSTest::Bytes gone;
  const CLines broken = {kBrokenTitle, "    P.dp01", "        ref => Samples/a.wav",
                         "Packing complete"};
  const CLines notes = {"Unreferenced samples:", "    S/b.wav", "Packing aborted"};
  const struct {
    const char* fWhat;
    std::string fFile;
    NSTest::Bytes fBytes;
    bool fGoOn;
    const char* fEnding;
    CLines fAlerts;
    CLines fLog;
  } cases[] = {
      {"left out", "S/b.wav", damaged, true, "packed", {"10 “S/b.wav”", "5 3 files"}, kPacked},
      {"needed", "Samples/a.wav", damaged, true, "problems", {"10 “Samples/a.wav”", "7"}, broken},
      {"not left out", "S/b.wav", damaged, false, "silent", {"10"}, {}},
      {"not left out, and notes to tell", "S/b.wav", damaged, false, "silent", {"10", "7"}, notes},
      {"gone", "S/b.wav", gone, false, "failed", {"9 “S/b.wav”"}, {}},
      {"of a later version", "P.dp01", laterPatch, true, "failed", {"9 “P.dp01”"}, {}},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.fWhat);
    CLibrary library;
    AddContent(library);
    library.WithSample("S/b.wav");
    const bool hasNotes = !test.fLog.empty() && !test.fGoOn;
    if (hasNotes) library.WithInfo("WARN_ABOUT_UNUSED_SAMPLES", "YES");
    CPackRun run(library, {{10, test.fGoOn}});
    run.fSettings.fJobs = 3;
    run.fProgress.fOnPhase = [&](int phase) {
      if (phase != 4) return;
      library.Without(test.fFile);
      if (!test.fBytes.empty()) library.WithFile(test.fFile, test.fBytes);
    };
    EXPECT_EQ(run.Pack(), test.fEnding);
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, test.fAlerts));
    EXPECT_EQ(run.Log(), test.fLog);
    const bool isPacked = run.OutputFiles().contains("Kit.tmb");
    const std::size_t files = (isPacked ? 1U : 0U) + (test.fLog.empty() ? 0U : 1U);
    EXPECT_EQ(run.OutputFiles().size(), files) << "no working file stays while the packer lives";
    ASSERT_EQ(isPacked, !test.fLog.empty() && test.fGoOn);
    if (isPacked) {
      EXPECT_FALSE(run.Packed().contains(test.fFile));
    }
  }
}

TEST(TambraPacker, AFinishedPackageThatIsDamagedOnDisk) {
  for (const bool inHeader : {true, false}) {
    CLibrary library;
    library.WithPatch("Z/Kind.dp01", {{"/Splash.jpg", 1, "", 14}});
    CPackRun run(library);
    const auto damage = [&](const std::string& part) {
      std::string bytes = run.PackageBytes();
      const std::size_t place = bytes.find(part);
      ASSERT_NE(place, bytes.npos);
      bytes[place] ^= 1;
      library.Folder().Write("out/Kit.tmb", bytes);
    };
    // The header is read as soon as the phase begins, the entries after it was announced.
    if (inHeader) {
      run.fProgress.fOnStopCheck = [&, done = false]() mutable {
        if (done || !run.OutputFiles().contains("Kit.tmb")) return;
        damage("Kit");
        done = true;
      };
    } else {
      run.fProgress.fOnPhase = [&](int phase) {
        if (phase == 8) damage("\xFF\xD8\xFF");
      };
    }
    EXPECT_EQ(run.Pack(), inHeader ? "failed" : "problems");
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, {inHeader ? "25 “Kit.tmb”" : "7"}));
    const CLines inEntryOrder = {"Failed validating:", "    Splash.jpg", "    Z/Kind.dp01",
                                 "Packing complete"};
    EXPECT_EQ(run.Log(), inHeader ? CLines{} : inEntryOrder);
  }
}

/// Whenever the user wants to stop, nothing of the run stays but a package that is whole.
TEST(TambraPacker, StopsAtEveryReportAndLeavesNothing) {
  CLibrary library;
  AddContent(library);
  library.WithBank("Bank.sf2");
  CPackRun whole(library.Input(), library.Folder().Path() / "whole");
  ASSERT_EQ(whole.Pack(), "packed");
  const CLines& reports = whole.fProgress.fReports;
  const auto isReadBack = std::find(reports.begin(), reports.end(), "begin 8 of 4");
  ASSERT_NE(isReadBack, reports.end());
  const auto composed = static_cast<std::size_t>(isReadBack - reports.begin());
  for (std::size_t report = 0; report < reports.size(); ++report) {
    SCOPED_TRACE(reports[report]);
    CPackRun run(library, {{20, true}});
    run.fProgress.fStopAt = report;
    run.fSettings.fJobs = report % 2 == 0 ? 1 : 3;
    EXPECT_EQ(run.Pack(), "silent: User aborted");
    const std::set<std::string> left = report < composed ? std::set<std::string>{}  //
                                                         : std::set<std::string>{"Kit.tmb"};
    EXPECT_EQ(run.OutputFiles(), left);
    EXPECT_FALSE(run.fProgress.StopRequested()) << "the request is answered";
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, report > composed ? CLines{"20"} : CLines{}));
  }
}

/// A request that comes in between two reports is seen at the next check, and not once a log and
/// a closing alert could contradict it.
TEST(TambraPacker, StopsAtEveryCheckBetweenReports) {
  CLibrary library;
  AddContent(library);
  std::size_t checks = 0;
  for (bool stopped = true; stopped; ++checks) {
    CPackRun run(library, {{20, true}});
    std::size_t count = 0;
    run.fProgress.fOnStopCheck = [&] {
      if (count++ == checks) run.fProgress.RequestStop();
    };
    const std::string ending = run.Pack();
    stopped = count > checks;
    EXPECT_EQ(ending, stopped ? "silent: User aborted" : "packed");
    const bool isWhole = run.OutputFiles().contains("Kit.tmb");
    EXPECT_EQ(run.OutputFiles().size(), (isWhole ? 1U : 0U) + (stopped ? 0U : 1U));
  }
  EXPECT_GT(checks, 9U) << "at least one for each phase";
}

/// As a window or a signal handler asks for it: while several threads are at work.
TEST(TambraPacker, IsStoppedFromAnotherThread) {
  CLibrary library;
  for (int i = 0; i < 40; ++i) library.WithSample("Samples/" + std::to_string(i) + ".wav");
  for (const int phase : {3, 4}) {
    CPackRun run(library);
    run.fSettings.fJobs = 4;
    std::thread user;
    run.fProgress.fOnPhase = [&](int begun) {
      if (begun == phase) user = std::thread([&run] { run.fProgress.RequestStop(); });
      if (begun > phase && user.joinable()) user.join();
    };
    EXPECT_EQ(run.Pack(), "silent: User aborted") << phase;
    if (user.joinable()) user.join();
    EXPECT_TRUE(run.OutputFiles().empty());
  }
}

TEST(TambraPacker, GivesTheSameBytesAndReportsForAnyNumberOfThreads) {
  CLibrary library;
  for (int i = 0; i < 70; ++i) {
    const std::string number = std::to_string(i);
    library.WithSample("S/" + number + ".wav");
    library.WithPatch("P/" + number + ".dp01", {{"/S/" + number + ".wav", 1}});
  }
  std::string bytes;
  CLines reports;
  for (const unsigned jobs : {1U, 2U, 5U}) {
    CPackRun run(library, {{20, true}});
    run.fSettings.fJobs = jobs;
    ASSERT_EQ(run.Pack(), "packed");
    if (jobs > 1) {
      EXPECT_TRUE(run.PackageBytes() == bytes) << jobs;
      EXPECT_EQ(run.fProgress.fReports, reports) << jobs;
    }
    bytes = run.PackageBytes();
    reports = run.fProgress.fReports;
  }
}

TEST(TambraPacker, RemovesWhatAKilledRunLeft) {
  CLibrary library;
  library.Folder().Write("out/.tambra-999999999-1.tmp", std::string_view("left"));
  library.Folder().Write("out/mine.tmp", std::string_view("kept"));
  const NSBigFilePackage::CTemporaryFile ofALivingRun(library.Output());
  CPackRun run(library);
  EXPECT_EQ(run.Pack(), "packed");
  EXPECT_EQ(run.OutputFiles().size(), 4U);
  EXPECT_FALSE(run.OutputFiles().contains(".tambra-999999999-1.tmp"));
  EXPECT_TRUE(run.OutputFiles().contains(ofALivingRun.Path().filename().string()));
}

/// Libraries whose packages are known to the byte, odd names and clutter among their files.
TEST(TambraPacker, MakesTheKnownPackagesOfTheExampleLibraries) {
  for (const char* name : {"small", "large"}) {
    SCOPED_TRACE(name);
    const auto folder = std::filesystem::path(TAMBRA_TEST_DATA) / "libraries" / name;
    const NSTest::CTemporaryFolder output;
    CPackRun run(folder / "input", output.Path(), {{18, true}, {21, true}, {23, true}}, false);
    run.fSettings.fJobs = 2;
    EXPECT_EQ(run.Pack(), "notes");
    EXPECT_TRUE(AlertsAre(run.fAlerts.fShown, {"6"}));
    EXPECT_TRUE(run.PackageBytes() == CPackRun::Bytes(folder / "expected.tmb"));
    ASSERT_TRUE(run.fPacker.State()->fLogFile);
    EXPECT_EQ(CPackRun::Bytes(run.fPacker.State()->fLogFile->Path()),
              CPackRun::Bytes(folder / "expected log.txt"));
  }
}

}  // namespace
}  // namespace NSTambraPacking
