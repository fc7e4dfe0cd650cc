#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/AlertText.h"
#include "fuzz/FuzzInput.h"

using namespace NSTambraPacking;

namespace {

std::u16string Write(const CAlertText& alert) {
  static constexpr const char16_t* kKinds[] = {u"NONE", u"STOP", u"NOTE", u"WARN"};
  std::u16string text = std::u16string(u"[") + kKinds[static_cast<int>(alert.fKind)] + u"]";
  text += u"[" + EscapeAlertArgument(alert.fTitle) + u"]" + EscapeAlertArgument(alert.fMessage);
  for (const auto& button : alert.fButtons) text += u"[" + EscapeAlertArgument(button) + u"]";
  return text;
}

bool Same(const CAlertText& a, const CAlertText& b) {
  return a.fKind == b.fKind && a.fTitle == b.fTitle && a.fMessage == b.fMessage &&
         a.fButtons == b.fButtons;
}

}  // namespace

/// An alert that can be read is the same when it was written and read again, and whatever stands in
/// the place of an argument is text.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = NSTolbrook::TextFromUtf8(NSFuzz::CFuzzInput(data, size).Text());
  if (const auto alert = NSFuzz::Read([&] { return CAlertText::Parse(text); })) {
    NSFuzz::Require(Same(CAlertText::Parse(Write(*alert)), *alert));
  }
  const CAlertText expected{EAlertKind::kWarn, u"^1", u"a" + text + u"^2", {u"Yes", text}};
  const auto filled = FillPlaceholders(u"[WARN][^1]a^0^2[Yes][^0]", {EscapeAlertArgument(text)});
  NSFuzz::Require(Same(CAlertText::Parse(filled), expected));
  return 0;
}
