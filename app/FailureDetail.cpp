#include "app/FailureDetail.h"

#include <algorithm>
#include <new>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/ExceptionAlerts.h"
#include "app/PrintableText.h"
#include "package/TemporaryFile.h"

namespace NSTambraPacking {

namespace {

CFailureDetail OwnDetail(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::bad_alloc&) {
    return {};  // the alert of its kind says it all
  } catch (const NSMordel::CExceptionBodyMixin& e) {
    return {e.Message(), e.Context()};
  } catch (const std::exception& e) {
    return {e.what(), {}};
  } catch (...) {
    return {};
  }
}

/// The folder for a file that has no name yet: its temporary one tells a user nothing.
std::string WithoutTemporaryName(const std::string& path) {
  const std::size_t slash = path.find_last_of("/\\");
  const bool hasFolder = slash != std::string::npos;
  const std::string name = hasFolder ? path.substr(slash + 1) : path;
  if (!NSBigFilePackage::CTemporaryFile::IsName(NSTolbrook::TextFromUtf8(name))) return path;
  return hasFolder ? path.substr(0, slash) : ".";
}

}  // namespace

std::u16string CFailureDetail::Line(const CTextResources& texts) const {
  std::u16string object;
  for (const auto& [key, value] : fContext) {
    if (key == NSMordel::kTargetObjectId) object = NSTolbrook::TextFromUtf8(value);
  }
  const std::u16string message = NSTolbrook::TextFromUtf8(fMessage);
  const bool namesIt = message.starts_with(object + u", ");  // a line or offset follows
  return object.empty() || namesIt ? message : texts.Text(kFailureDetail, {object, message});
}

CFailureDetail DetailOfFailure(const std::exception_ptr& failure, const std::string& subject) {
  CFailureDetail detail = OwnDetail(failure);
  for (auto& [key, value] : detail.fContext) {
    if (key == NSMordel::kTargetObjectId) value = WithoutTemporaryName(value);
  }
  const bool isNamed =
      std::any_of(detail.fContext.begin(), detail.fContext.end(),
                  [](const auto& value) { return value.first == NSMordel::kTargetObjectId; });
  if (!isNamed && !subject.empty()) {
    detail.fContext.emplace_back(NSMordel::kTargetObjectId, subject);
  }
  return detail;
}

CAlertText AlertOfFailure(const CTextResources& texts, const std::exception_ptr& failure,
                          const std::string& subject) {
  const CAlertChoice choice =
      ChooseAlert(failure, ESituation::kGeneral, {}).value_or(CAlertChoice{kAlertUnknownError, {}});
  CAlertText alert = texts.Alert(choice.fNumber, choice.fArguments);
  const CFailureDetail detail = DetailOfFailure(failure, subject);
  if (!detail.fMessage.empty()) alert.fMessage = detail.Line(texts);
  alert.fMessage = PrintableText(alert.fMessage);
  return alert;
}

}  // namespace NSTambraPacking
