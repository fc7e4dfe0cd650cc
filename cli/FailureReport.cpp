#include "cli/FailureReport.h"

#include <algorithm>

#include "app/FailureDetail.h"

namespace NSTambraCli {

namespace {

/// Nothing else is ever replaced.
const NSMordel::CContext::value_type kFileType = {NSMordel::kTargetObjectType, "file"};

CJson ObjectOf(const NSMordel::CContext& context) {
  CJson object = std::initializer_list<CJson::CMember>{};
  for (const auto& [key, value] : context) object.Add(key, value);
  return object;
}

}  // namespace

bool ReportDetail(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                  const std::exception_ptr& failure, const std::string& subject) {
  const NSTambraPacking::CFailureDetail detail = NSTambraPacking::DetailOfFailure(failure, subject);
  if (detail.fMessage.empty()) return false;
  if (console.Json()) {
    CJson event = {{"event", "failure"}, {"message", detail.fMessage}};
    if (!detail.fContext.empty()) event.Add("context", ObjectOf(detail.fContext));
    console.PrintJson(event);
    return true;
  }
  console.Warn(console.PaintedNote(Printable(detail.Line(texts)), EColour::kRed));
  return true;
}

EExitStatus ReportTaken(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                        const std::exception_ptr& failure) {
  ReportDetail(console, texts, failure);
  const NSTambraPacking::CFailureDetail detail = NSTambraPacking::DetailOfFailure(failure, {});
  const bool isFile = std::ranges::count(detail.fContext, kFileType) > 0;
  if (isFile && !console.Json()) {
    console.Note(Printable(texts.Text(NSTambraPacking::kReplaceHint)));
  }
  return kExitAborted;
}

}  // namespace NSTambraCli
