#include <functional>
#include <gtest/gtest.h>
#include <new>

#include "package/PackageVerifier.h"
#include "tests/package/PackageFixture.h"
#include "tests/support/FailingMedia.h"
#include "tests/support/FaultText.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;
using NSTest::CRecordingProgress;

/// Notes what it is asked and answers by script.
class CScriptedVerifier : public IEntryVerifier {
 public:
  using CScript = std::function<std::vector<std::u16string>(const CPackageEntry&)>;

  explicit CScriptedVerifier(CScript script =
                                 [](const CPackageEntry& entry) {
                                   NSTest::TextOf(*entry.Data());
                                   return std::vector<std::u16string>();
                                 })
      : fScript(std::move(script)) {}

  void TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) override {
    fEntryCount = entries.size();
  }
  void Cancel() override {}
  std::vector<std::u16string> Verify(const CPackageEntry& entry, bool resolve) const override {
    fCalls.push_back(NSTolbrook::Utf8FromText(entry.Name()) + (resolve ? " resolved" : ""));
    return fScript(entry);
  }

  mutable std::vector<std::string> fCalls;
  std::size_t fEntryCount = 0;

 private:
  CScript fScript;
};

/// The finished example package, its expected header, and the verification under test.
class PackageVerifierTest : public testing::Test {
 protected:
  PackageVerifierTest() {
    NSTest::CComposing composing;
    fOptions.fExpectedHeader = &fExpected;
    fExpected = composing.Compose(NSTest::ExampleEntries(), *fPackage);
  }

  CVerificationResult Verify(CScriptedVerifier& verifier) {
    return CPackageVerifier(verifier, &fJob, &fProgress).Verify(fPackage, fOptions);
  }
  CVerificationResult VerifyWith(CScriptedVerifier::CScript script) {
    CScriptedVerifier verifier(std::move(script));
    return Verify(verifier);
  }
  std::string Refusal() {
    return NSTest::FaultText<NSMordel::XFormatViolation>([&] { Verify(fVerifier); });
  }

  std::shared_ptr<CMemoryMedia> fPackage = std::make_shared<CMemoryMedia>();
  CPackageHeader fExpected;
  CVerificationOptions fOptions;
  CScriptedVerifier fVerifier;
  CRecordingProgress fProgress;
  CTambraPacker fJob;
};

TEST_F(PackageVerifierTest, EntriesAreReportedAndVerifiedInOrder) {
  const CVerificationResult result = Verify(fVerifier);
  EXPECT_EQ(result.fHeader, fExpected);
  EXPECT_EQ(result.fVerifiedCount, 3u);
  EXPECT_EQ(fVerifier.fEntryCount, 3u);
  EXPECT_TRUE(result.fFailed.empty() && result.fBroken.empty());
  EXPECT_EQ(fVerifier.fCalls,
            (std::vector<std::string>{"Beat.mid", "Splash.jpg", "One.ops resolved"}));
  EXPECT_EQ(fProgress.fReports, (std::vector<std::string>{"begin 8 of 3", "0 Beat.mid",
                                                          "1 Splash.jpg", "2 One.ops", "end 8"}));
}

TEST_F(PackageVerifierTest, FirstHeaderDifferenceInTheFixedOrderIsTheOneThrown) {
  const struct {
    std::string fField;
    std::function<void(CPackageHeader&)> fSpoil;
  } kFields[] = {
      {"comment", [](CPackageHeader& header) { header.fComment += u"x"; }},
      {"copyright", [](CPackageHeader& header) { header.fCopyright[0] = u'C'; }},
      {"datastart", [](CPackageHeader& header) { ++header.fDataStart; }},
      {"filecount", [](CPackageHeader& header) { --header.fFileCount; }},
      {"indexstart", [](CPackageHeader& header) { ++header.fIndexStart; }},
      {"tambraname", [](CPackageHeader& header) { header.fTambraName = u"kit"; }},
      {"url", [](CPackageHeader& header) { header.fURL = u"x"; }},
      {"version", [](CPackageHeader& header) { header.fVersion.fBuild = 1; }},
  };
  for (std::size_t first = 0; first < std::size(kFields); ++first) {
    fExpected = CPackageHeader(CPackageVerifier(fVerifier, nullptr, nullptr)
                                   .Verify(fPackage, CVerificationOptions())
                                   .fHeader);
    for (std::size_t i = first; i < std::size(kFields); ++i) kFields[i].fSpoil(fExpected);
    EXPECT_EQ(Refusal(), "header " + kFields[first].fField + " mismatch");
  }
  EXPECT_TRUE(fProgress.fReports.empty()) << "entries were taken up";
}

TEST_F(PackageVerifierTest, HeaderDifferenceComesBeforeTheFaultsOfTheIndex) {
  fPackage->Write(0x25, std::vector<std::uint8_t>{0xFF});
  EXPECT_EQ(Refusal(), "header datastart mismatch");
  fOptions.fExpectedHeader = nullptr;
  EXPECT_TRUE(Refusal().starts_with("the package's data region starts")) << Refusal();
}

TEST_F(PackageVerifierTest, PackageWithoutEntriesIsGood) {
  fPackage->Write(0x20, std::vector<std::uint8_t>{0});
  fExpected.fFileCount = 0;
  EXPECT_EQ(Verify(fVerifier).fVerifiedCount, 0u);
  EXPECT_TRUE(fVerifier.fCalls.empty());
}

TEST_F(PackageVerifierTest, FailedAndBrokenEntriesAreListedOnceAndTheWalkGoesOn) {
  const CVerificationResult result =
      VerifyWith([](const CPackageEntry& entry) -> std::vector<std::u16string> {
        if (entry.Name() == u"Beat.mid") throw NSMordel::XFormatViolation();
        if (entry.Name() == u"Splash.jpg") throw std::out_of_range("too far");
        return {u"a => b", u"c => d"};
      });
  EXPECT_EQ(result.fVerifiedCount, 3u);
  ASSERT_EQ(result.fFailed.size(), 2u);
  EXPECT_EQ(result.fFailed[0].fEntry->Path(), u"Beat.mid");
  EXPECT_EQ(result.fFailed[0].fMessage, "");
  EXPECT_EQ(result.fFailed[1].fMessage, "too far");
  ASSERT_EQ(result.fBroken.size(), 1u);
  EXPECT_EQ(result.fBroken[0].fEntry->Path(), u"Songs/One.ops");
  EXPECT_EQ(result.fBroken[0].fReferences, (std::vector<std::u16string>{u"a => b", u"c => d"}));
}

TEST_F(PackageVerifierTest, WhatIsNoFaultOfAnEntryEndsTheVerification) {
  using References = std::vector<std::u16string>;
  const auto raise = [](auto failure) {
    return [failure](const CPackageEntry&) -> References { throw failure; };
  };
  EXPECT_THROW(VerifyWith(raise(NSMordel::XAbort())), NSMordel::XAbort);
  EXPECT_THROW(VerifyWith(raise(NSMordel::XSilentAbort())), NSMordel::XSilentAbort);
  EXPECT_THROW(VerifyWith(raise(std::bad_alloc())), std::bad_alloc);
}

TEST_F(PackageVerifierTest, BrokenMediumIsToldFromAnEntryThatEndsTooEarly) {
  const auto readTooFar = [](const CPackageEntry& entry) -> std::vector<std::u16string> {
    std::vector<std::uint8_t> bytes(100);
    NSBigFilePackage::ReadExactly(*entry.Data(), 0, bytes);
    return {};
  };
  EXPECT_EQ(VerifyWith(readTooFar).fFailed.size(), 3u);

  const auto medium = std::make_shared<NSTest::CFailingMedia>(fPackage);
  CScriptedVerifier swallowing([&](const CPackageEntry& entry) {
    medium->SetReadBudget(0);
    EXPECT_THROW(NSTest::TextOf(*entry.Data()), NSMordel::XRead);
    return std::vector<std::u16string>();
  });
  EXPECT_THROW(CPackageVerifier(swallowing, nullptr, nullptr).Verify(medium, fOptions),
               NSMordel::XRead);
  EXPECT_EQ(swallowing.fCalls.size(), 1u);
}

TEST_F(PackageVerifierTest, CanEndAtTheFirstEntryToResolve) {
  fOptions.fEndAtFirstToResolve = true;
  EXPECT_EQ(Verify(fVerifier).fVerifiedCount, 2u);
  EXPECT_EQ(fVerifier.fCalls, (std::vector<std::string>{"Beat.mid", "Splash.jpg"}));
  EXPECT_EQ(fProgress.fReports.back(), "end 8");
}

TEST_F(PackageVerifierTest, StopRequestIsSeenAtTheStartAndBeforeEachEntry) {
  for (std::size_t i = 0; i < 4; ++i) {
    CRecordingProgress progress;
    progress.fStopAt = i;
    CScriptedVerifier verifier;
    const CPackageVerifier verification(verifier, &fJob, &progress);
    const auto verify = [&] { verification.Verify(fPackage, fOptions); };
    EXPECT_EQ(NSTest::FaultText<NSMordel::XSilentAbort>(verify), "User aborted") << i;
    EXPECT_EQ(progress.fReports.back(), "cleared");
    EXPECT_EQ(verifier.fCalls.size(), i == 0 ? 0 : i - 1);
  }
}

}  // namespace
}  // namespace NSTambraPacking
