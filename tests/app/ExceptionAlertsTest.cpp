#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/ExceptionAlerts.h"
#include "app/PackageInformation.h"
#include "app/VersionText.h"
#include "package/PackageFormat.h"
#include "package/SplashCheck.h"

namespace NSTambraPacking {
namespace {

using namespace NSMordel;

std::exception_ptr Of(const char* objectType) {
  return std::make_exception_ptr(XNotFound("", {{kTargetObjectType, objectType}}));
}

template <class Kind>
std::exception_ptr Make(CContext context = {}) {
  return std::make_exception_ptr(Kind("", std::move(context)));
}

TEST(ExceptionAlerts, GenericAlertsGoByKindAndObject) {
  const CContext folder{{kTargetObjectType, "directory"}};
  const CContext network{{kTargetObjectType, "network"}};
  const CContext disk{{kTargetObjectType, "disk"}};
  const std::vector<std::pair<std::exception_ptr, CAlertNumber>> cases{
      {std::make_exception_ptr(std::bad_alloc()), kGenericOutOfMemory},
      {Make<XOutOfSpace>(disk), kGenericDiskFull},
      {Make<XNotFound>(), kGenericNotFound},
      {Of("file"), kGenericNotFound},
      {Of("network"), kGenericNetwork},
      {Of("volume"), kGenericObjectNotFound},
      {Of("reference"), kGenericItemNotFound},
      {Make<XFormatViolation>(), kGenericBadFormat},
      {Make<XUnsupportedFormat>(), kGenericUnsupported},
      {Make<XVersionTooNew>(), kGenericUnsupported},
      {Make<XVersionTooOld>(), kGenericUnsupported},
      {Make<XRead>(), kGenericRead},
      {Make<XWrite>(disk), kGenericWrite},
      {Make<XCreate>(), kGenericWrite},
      {Make<XLocked>(), kGenericLocked},
      {Make<XResolve>(), kGenericResolve},
      {Make<XOpen>(folder), kGenericFolder},
      {Make<XOpen>(network), kGenericNetwork},
      {Make<XOpen>(disk), kGenericMedia},
      {Make<XOpen>(), kGenericRead},
      {Make<XNotReady>(), kGenericNotReady},
      {Make<XPermission>(), kGenericAccess},
      {Make<XDelete>(disk), kGenericMedia},
      {Make<XDelete>(), kGenericFileSystem},
      {Make<XAlreadyExists>(), kGenericFileSystem},
      {Make<XOutOfItems>(), kGenericFileSystem},
      {Make<XInvariantCorrupt>(), kAlertInternalError},
      {std::make_exception_ptr(std::out_of_range("")), kAlertInternalError},
      {std::make_exception_ptr(std::runtime_error("")), kGenericFileSystem},
      {std::make_exception_ptr(std::exception()), kAlertUnknownException},
      {std::make_exception_ptr(42), kAlertUnknownError},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const auto choice = ChooseAlert(cases[i].first, ESituation::kGeneral, u"");
    ASSERT_TRUE(choice) << i;
    EXPECT_EQ(choice->fNumber, cases[i].second) << i;
    EXPECT_TRUE(choice->fArguments.empty()) << i;
  }
}

TEST(ExceptionAlerts, AbortsShowNothing) {
  EXPECT_FALSE(ChooseAlert(Make<XAbort>(), ESituation::kGeneral, u""));
  EXPECT_FALSE(ChooseAlert(Make<XSilentAbort>(), ESituation::kPacking, u"f"));
}

TEST(ExceptionAlerts, TheJobsAlertsGoBySituation) {
  const std::vector<std::tuple<std::exception_ptr, ESituation, CAlertNumber>> cases{
      {Make<XResolve>(), ESituation::kScanning, kAlertBadShortcut},
      {Make<XVersionTooNew>(), ESituation::kPacking, kAlertNotPacked},
      {Make<XOutOfSpace>(), ESituation::kPacking, kAlertNotPacked},
      {Make<XRead>(), ESituation::kVerifying, kAlertNotVerified},
      {Make<XFormatViolation>(), ESituation::kComposing, kAlertBadFormatCancelled},
      {Make<XFormatViolation>(), ESituation::kFinalVerification, kAlertFileProblem},
  };
  for (const auto& [failure, situation, number] : cases) {
    const auto choice = ChooseAlert(failure, situation, u"a.wav");
    EXPECT_EQ(choice->fNumber, number);
    EXPECT_EQ(choice->fArguments, std::vector<std::u16string>{u"a.wav"});
  }
  const auto outOfMemory = std::make_exception_ptr(std::bad_alloc());
  EXPECT_EQ(ChooseAlert(outOfMemory, ESituation::kPacking, u"f")->fNumber, kGenericOutOfMemory);
  const auto diskFull = Make<XOutOfSpace>({{kTargetObjectType, "disk"}});
  for (const ESituation situation : {ESituation::kPacking, ESituation::kComposing}) {
    EXPECT_EQ(ChooseAlert(diskFull, situation, u"f")->fNumber, kGenericDiskFull);
  }
}

TEST(ExceptionAlerts, NamedObjectsHaveTheirOwn) {
  const auto choose = [](const auto& action) {
    try {
      action();
    } catch (...) {
      return *ChooseAlert(std::current_exception(), ESituation::kScanning, u"file");
    }
    return CAlertChoice{{0, 0}, {}};
  };
  const auto expect = [](const CAlertChoice& choice, CAlertNumber number,
                         const std::vector<std::u16string>& arguments) {
    EXPECT_EQ(choice.fNumber, number) << choice.fNumber.fEntry;
    EXPECT_EQ(choice.fArguments, arguments) << choice.fNumber.fEntry;
  };
  expect(choose([] { throw XNotFound("", {{kTambraNameKey, ""}}); }), kAlertNoName, {});
  expect(choose([] { throw XNotFound("", {{kSplashKey, ""}}); }), kAlertNoSplash, {});
  expect(choose([] {
           throw XUnsupportedFormat("", {{kSplashKey, "Splash.jpg"}});
         }),
         kAlertBadSplash, {u"64", u"64"});
  expect(choose([] { ParseVersionText(u"[1]"); }), kAlertBadVersion, {u"[1]"});
  expect(choose([] { ParseVersionText(u"1.2.1"); }), kAlertVersionTooNew, {u"1.2.1", u"1.2.0"});
  CPackageInformation information;
  information.fName = u"a/b";
  expect(choose([&] { information.OutputFileName(); }), kAlertBadName, {u"a/b"});
  expect(choose([] {
           throw XCreate("", {{kOutputFolderKey, "/o"}});
         }),
         kAlertOutputInsideInput, {u"/o"});
  expect(choose([] {
           throw XUnsupportedFormat("", {{kPackageSizeKey, "9"}, {kSecondaryObjectId, "8"}});
         }),
         kAlertTooLarge, {u"9", u"8"});
}

TEST(ExceptionResponder, ShowsTheAlertAndKeepsQuietForAborts) {
  class CPresenter : public IAlertPresenter {
   public:
    int Show(CAlertNumber number, const CAlertText& alert) override {
      fShown.emplace_back(number.fEntry, alert.fMessage);
      return kLastButton;
    }
    std::vector<std::pair<int, std::u16string>> fShown;
  };
  const CTextResources texts;
  CPresenter presenter;
  CExceptionResponder responder(texts, presenter);
  responder.Respond(Make<XAbort>());
  responder.Respond(std::make_exception_ptr("text"));
  ASSERT_EQ(presenter.fShown.size(), 1U);
  EXPECT_EQ(presenter.fShown[0].second, u"An unknown error occured!");
}

}  // namespace
}  // namespace NSTambraPacking
