#include "cli/AdviceReport.h"

#include <algorithm>
#include <span>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraCli {

namespace {

using namespace NSTambraPacking;
using NSTolbrook::TextFromUtf8;
using NSTolbrook::Utf8FromText;

/// A longer path moves what stands behind it rather than all of its group.
constexpr std::size_t kWidestPath = 60;
constexpr std::size_t kParagraphWidth = 78;

std::string SeverityName(ESeverity severity) {
  return std::string(kSeverityNames[static_cast<std::size_t>(severity)]);
}

EColour ColourOf(ESeverity severity) {
  if (severity == ESeverity::kError) return EColour::kRed;
  return severity == ESeverity::kWarning ? EColour::kYellow : EColour::kDim;
}

CJson JsonOf(const CAdviceValue& value) {
  if (const auto* const text = std::get_if<std::u16string>(&value.fValue)) {
    return CJson(Utf8FromText(*text));
  }
  if (const auto* const fraction = std::get_if<double>(&value.fValue)) return *fraction;
  return std::get<std::uint64_t>(value.fValue);
}

void PrintEvent(const CConsole& console, const CTextResources& texts, const CAdvice& advice) {
  CJson event = {{"event", "advice"},
                 {"id", AdviceKind(advice.fAdvice).fId},
                 {"severity", SeverityName(advice.fSeverity)},
                 {"file", Utf8FromText(advice.fFile)}};
  const std::u16string detail = advice.Detail(texts);
  if (!detail.empty()) event.Add("message", Utf8FromText(detail));
  CJson values = std::initializer_list<CJson::CMember>{};
  for (const CAdviceValue& value : advice.fValues) values.Add(value.fName, JsonOf(value));
  if (!advice.fValues.empty()) event.Add("values", values);
  console.PrintJson(event);
}

/// Advice of one kind and severity.
void PrintGroup(const CConsole& console, const CTextResources& texts,
                std::span<const CAdvice> group) {
  const CAdviceKind& kind = AdviceKind(group.front().fAdvice);
  const ESeverity severity = group.front().fSeverity;
  const std::u16string heading = texts.Text(
      kAdviceHeading, {texts.Text(AdviceText(kind.fAdvice, EAdviceText::kTitle)),
                       TextFromUtf8(SeverityName(severity)), TextFromUtf8(std::string(kind.fId))});
  console.Print(console.Painted(Printable(heading), ColourOf(severity)));
  std::size_t width = 0;
  for (const CAdvice& advice : group) {
    const std::size_t taken = DisplayWidth(TextFromUtf8(Printable(advice.fFile)));
    if (taken <= kWidestPath) width = std::max(width, taken);
  }
  for (const CAdvice& advice : group) {
    const std::string detail = Printable(advice.Detail(texts));
    const std::string file = Printable(advice.fFile);
    console.Print("    " + (detail.empty() ? file : PadRight(file, width) + "  " + detail));
  }
}

/// The words of `text` in lines of kParagraphWidth columns.
void PrintParagraph(const CConsole& console, const std::string& text) {
  std::string line;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(' ', at), text.size());
    const std::string word = text.substr(at, end - at);
    if (!line.empty() && DisplayWidth(TextFromUtf8(line + " " + word)) > kParagraphWidth) {
      console.Print(line);
      line.clear();
    }
    line += line.empty() ? word : " " + word;
    at = end + 1;
  }
  console.Print(line);
}

CJson JsonOf(const CTextResources& texts, const CAdviceKind& kind) {
  const auto text = [&](EAdviceText which) {
    return Utf8FromText(texts.Text(AdviceText(kind.fAdvice, which)));
  };
  return {{"id", kind.fId},
          {"severity", SeverityName(kind.fSeverity)},
          {"title", text(EAdviceText::kTitle)},
          {"what", text(EAdviceText::kWhat)},
          {"why", text(EAdviceText::kWhy)},
          {"how", text(EAdviceText::kHow)}};
}

}  // namespace

void PrintAdvice(const CConsole& console, const CTextResources& texts,
                 const std::vector<CAdvice>& advice) {
  for (auto first = advice.begin(); first != advice.end();) {
    const auto last = std::find_if(first, advice.end(), [first](const CAdvice& other) {
      return other.fAdvice != first->fAdvice || other.fSeverity != first->fSeverity;
    });
    if (console.Json()) {
      std::for_each(first, last, [&](const CAdvice& one) { PrintEvent(console, texts, one); });
    } else {
      PrintGroup(console, texts, std::span(first, last));
    }
    first = last;
  }
}

void PrintAdviceCounts(const CConsole& console, const CTextResources& texts, std::size_t files,
                       const std::vector<CAdvice>& advice) {
  std::vector<std::u16string> arguments = {TextFromUtf8(std::to_string(files))};
  for (const ESeverity severity : {ESeverity::kError, ESeverity::kWarning, ESeverity::kNote}) {
    const auto count = std::ranges::count(advice, severity, &CAdvice::fSeverity);
    arguments.push_back(TextFromUtf8(std::to_string(count)));
  }
  console.Print(Printable(texts.Text(kAdviceCounts, arguments)));
}

void PrintAdviceKinds(const CConsole& console, const CTextResources& texts) {
  if (console.Json()) {
    CJson list = CJson::Array();
    for (const CAdviceKind& kind : AdviceKinds()) list.Append(JsonOf(texts, kind));
    console.PrintJson({{"advice", list}});
    return;
  }
  std::size_t width = 0;
  for (const CAdviceKind& kind : AdviceKinds()) width = std::max(width, kind.fId.size());
  for (const CAdviceKind& kind : AdviceKinds()) {
    console.Print(PadRight(std::string(kind.fId), width) + "  " +
                  PadRight(SeverityName(kind.fSeverity), kSeverityNames[2].size()) + "  " +
                  Printable(texts.Text(AdviceText(kind.fAdvice, EAdviceText::kTitle))));
  }
}

void ExplainAdvice(const CConsole& console, const CTextResources& texts, const CAdviceKind& kind) {
  if (console.Json()) {
    console.PrintJson(JsonOf(texts, kind));
    return;
  }
  const std::u16string title = texts.Text(AdviceText(kind.fAdvice, EAdviceText::kTitle));
  console.Print(
      Printable(texts.Text(kAdviceHeading, {title, TextFromUtf8(SeverityName(kind.fSeverity)),
                                            TextFromUtf8(std::string(kind.fId))})));
  for (const EAdviceText text : {EAdviceText::kWhat, EAdviceText::kWhy, EAdviceText::kHow}) {
    console.Print("");
    PrintParagraph(console, Printable(texts.Text(AdviceText(kind.fAdvice, text))));
  }
}

}  // namespace NSTambraCli
