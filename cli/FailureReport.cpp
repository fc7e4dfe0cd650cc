#include "cli/FailureReport.h"

#include <algorithm>
#include <new>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraCli {

namespace {

struct CDetail {
  std::string fMessage;
  NSMordel::CContext fContext;
};

CDetail DetailOf(const std::exception_ptr& failure) {
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

CJson ObjectOf(const NSMordel::CContext& context) {
  CJson object = std::initializer_list<CJson::CMember>{};
  for (const auto& [key, value] : context) object.Add(key, value);
  return object;
}

}  // namespace

bool ReportDetail(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                  const std::exception_ptr& failure, const std::string& subject) {
  CDetail detail = DetailOf(failure);
  if (detail.fMessage.empty()) return false;
  const bool isNamed =
      std::any_of(detail.fContext.begin(), detail.fContext.end(),
                  [](const auto& value) { return value.first == NSMordel::kTargetObjectId; });
  if (!isNamed && !subject.empty()) {
    detail.fContext.emplace_back(NSMordel::kTargetObjectId, subject);
  }
  if (console.Json()) {
    CJson event = {{"event", "failure"}, {"message", detail.fMessage}};
    if (!detail.fContext.empty()) event.Add("context", ObjectOf(detail.fContext));
    console.PrintJson(event);
    return true;
  }
  std::u16string object;
  for (const auto& [key, value] : detail.fContext) {
    if (key == NSMordel::kTargetObjectId) object = NSTolbrook::TextFromUtf8(value);
  }
  const std::u16string message = NSTolbrook::TextFromUtf8(detail.fMessage);
  console.Warn(Printable(
      object.empty() ? message : texts.Text(NSTambraPacking::kFailureDetail, {object, message})));
  return true;
}

EExitStatus ReportTaken(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                        const std::exception_ptr& failure) {
  ReportDetail(console, texts, failure);
  if (!console.Json()) console.Note(Printable(texts.Text(NSTambraPacking::kReplaceHint)));
  return kExitAborted;
}

}  // namespace NSTambraCli
