#include "app/ExceptionAlerts.h"

#include <array>
#include <string_view>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/StdException.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/VersionText.h"
#include "package/PackageFormat.h"
#include "package/SplashCheck.h"

namespace NSTambraPacking {

namespace {

using namespace NSMordel;
using NSMordelDetails::XStdBadAlloc;

std::string_view ContextValue(const CExceptionBodyMixin& failure, const char* key) {
  const std::string* value = failure.FindContext(key);
  return value == nullptr ? std::string_view() : std::string_view(*value);
}

template <class Kind>
bool IsKind(const CExceptionBodyMixin& failure) {
  return dynamic_cast<const Kind*>(&failure) != nullptr;
}

template <class... Kinds>
bool IsAnyOf(const CExceptionBodyMixin& failure) {
  return (IsKind<Kinds>(failure) || ...);
}

CAlertNumber NotFoundAlert(std::string_view objectType) {
  if (objectType == "network") return kGenericNetwork;
  if (objectType == "directory" || objectType == "disk" || objectType == "volume") {
    return kGenericObjectNotFound;
  }
  return objectType.empty() || objectType == "file" ? kGenericNotFound : kGenericItemNotFound;
}

CAlertNumber OpenAlert(std::string_view objectType) {
  if (objectType == "network") return kGenericNetwork;
  if (objectType == "directory") return kGenericFolder;
  return objectType == "disk" || objectType == "volume" ? kGenericMedia : kGenericRead;
}

CAlertNumber OtherAlert(std::string_view objectType) {
  if (objectType == "authentication") return kGenericAccess;
  if (objectType == "network") return kGenericNetwork;
  return objectType == "disk" || objectType == "volume" ? kGenericMedia : kGenericFileSystem;
}

struct CPairing {
  bool (*fMatches)(const CExceptionBodyMixin&);
  CAlertNumber fAlert;
};

/// Kinds whose alert does not depend on the failing object.
constexpr std::array kPairings{
    CPairing{IsKind<XStdBadAlloc>, kGenericOutOfMemory},
    CPairing{IsKind<XOutOfSpace>, kGenericDiskFull},
    CPairing{IsKind<XFormatViolation>, kGenericBadFormat},
    CPairing{IsAnyOf<XUnsupportedFormat, XVersionTooNew, XVersionTooOld>, kGenericUnsupported},
    CPairing{IsKind<XRead>, kGenericRead},
    CPairing{IsAnyOf<XWrite, XCreate, XClose, XReadOnly>, kGenericWrite},
    CPairing{IsKind<XLocked>, kGenericLocked},
    CPairing{IsKind<XResolve>, kGenericResolve},
    CPairing{IsAnyOf<XNotReady, XTimeout>, kGenericNotReady},
    CPairing{IsKind<XPermission>, kGenericAccess},
    CPairing{IsKind<NSMordelDetails::XStdException>, kAlertUnknownException},
    CPairing{IsAnyOf<std::logic_error, XUnitTestFailure>, kAlertInternalError},
};

CAlertNumber GenericAlert(const CExceptionBodyMixin& failure) {
  const std::string_view objectType = ContextValue(failure, kTargetObjectType);
  for (const CPairing& pairing : kPairings) {
    if (pairing.fMatches(failure)) return pairing.fAlert;
  }
  if (IsKind<XNotFound>(failure)) return NotFoundAlert(objectType);
  if (IsKind<XOpen>(failure)) return OpenAlert(objectType);
  return OtherAlert(objectType);
}

/// The alert of a failure whose context names one, whatever the job was doing.
std::optional<CAlertChoice> ContextAlert(const CExceptionBodyMixin& failure) {
  const auto value = [&failure](const char* key) {
    return NSTolbrook::TextFromUtf8(ContextValue(failure, key));
  };
  const auto has = [&failure](const char* key) { return failure.FindContext(key) != nullptr; };
  const std::u16string limit = value(kSecondaryObjectId);
  if (has(kTambraNameKey)) {
    if (IsKind<XNotFound>(failure)) return CAlertChoice{kAlertNoName, {}};
    return CAlertChoice{kAlertBadName, {value(kTambraNameKey)}};
  }
  if (has(kSplashKey)) {
    if (IsKind<XNotFound>(failure)) return CAlertChoice{kAlertNoSplash, {}};
    const std::u16string edge = NSTolbrook::TextFromUtf8(std::to_string(kSplashEdge));
    return CAlertChoice{kAlertBadSplash, {edge, edge}};
  }
  if (has(kVersionKey)) {
    if (IsKind<XVersionTooNew>(failure)) {
      return CAlertChoice{kAlertVersionTooNew, {value(kVersionKey), limit}};
    }
    return CAlertChoice{kAlertBadVersion, {value(kVersionKey)}};
  }
  if (has(kOutputFolderKey)) {
    return CAlertChoice{kAlertOutputInsideInput, {value(kOutputFolderKey)}};
  }
  if (has(kPackageSizeKey)) {
    return CAlertChoice{kAlertTooLarge, {value(kPackageSizeKey), limit}};
  }
  return std::nullopt;
}

/// Told from data that no format has room for, which is the file's fault.
bool IsFullDisk(const CExceptionBodyMixin& failure) {
  return IsKind<XOutOfSpace>(failure) && ContextValue(failure, kTargetObjectType) == "disk";
}

/// The alert that belongs to what the job was doing, or nothing where the kind says more.
std::optional<CAlertNumber> SituationAlert(const CExceptionBodyMixin& failure,
                                           ESituation situation) {
  const bool isBadData =
      IsAnyOf<XFormatViolation, XUnsupportedFormat, XVersionTooNew, XVersionTooOld>(failure);
  switch (situation) {
    case ESituation::kScanning:
      if (IsKind<XResolve>(failure)) return kAlertBadShortcut;
      return std::nullopt;
    case ESituation::kVerifying:
      return kAlertNotVerified;
    case ESituation::kPacking:
      if (IsFullDisk(failure)) return std::nullopt;
      return kAlertNotPacked;
    case ESituation::kComposing:
      if (isBadData) return kAlertBadFormatCancelled;
      return std::nullopt;
    case ESituation::kFinalVerification:
      return kAlertFileProblem;
    case ESituation::kGeneral:
      break;
  }
  return std::nullopt;
}

std::optional<CAlertChoice> ChooseFamilyAlert(const CExceptionBodyMixin& failure,
                                              ESituation situation,
                                              const std::u16string& fileName) {
  if (IsAnyOf<XAbort, XSilentAbort>(failure)) return std::nullopt;
  if (IsKind<XStdBadAlloc>(failure)) return CAlertChoice{kGenericOutOfMemory, {}};
  if (const auto choice = ContextAlert(failure)) return choice;
  if (!fileName.empty()) {
    if (const auto number = SituationAlert(failure, situation)) {
      return CAlertChoice{*number, {fileName}};
    }
  }
  return CAlertChoice{GenericAlert(failure), {}};
}

}  // namespace

std::optional<CAlertChoice> ChooseAlert(const std::exception_ptr& failure, ESituation situation,
                                        const std::u16string& fileName) {
  try {
    try {
      std::rethrow_exception(failure);
    } catch (...) {
      NSMordelDetails::RethrowInFamily();
    }
  } catch (const CExceptionBodyMixin& member) {
    return ChooseFamilyAlert(member, situation, fileName);
  } catch (...) {
    return CAlertChoice{kAlertUnknownError, {}};
  }
}

std::u16string FailingFile(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const CExceptionBodyMixin& e) {
    const bool isFile = ContextValue(e, kTargetObjectType) == "file";
    return isFile ? NSTolbrook::TextFromUtf8(ContextValue(e, kTargetObjectId)) : std::u16string();
  } catch (...) {
    return {};
  }
}

int ShowAlert(const CTextResources& texts, IAlertPresenter& presenter, const CAlertChoice& choice) {
  return presenter.Show(choice.fNumber, texts.Alert(choice.fNumber, choice.fArguments));
}

void CExceptionResponder::Respond(std::exception_ptr failure) {
  if (const auto choice = ChooseAlert(failure, ESituation::kGeneral, {})) {
    ShowAlert(fTexts, fPresenter, *choice);
  }
}

}  // namespace NSTambraPacking
