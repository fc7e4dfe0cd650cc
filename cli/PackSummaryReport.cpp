#include "cli/PackSummaryReport.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "app/PackSummary.h"
#include "package/StdioMedia.h"

namespace NSTambraCli {

namespace {

using namespace NSTambraPacking;
using NSTolbrook::TextFromUtf8;
using NSTolbrook::Utf8FromText;

/// Files that are left out are named when there are no more of them.
constexpr std::size_t kMostNames = 5;
/// In the order of ELeftOut, from its second.
constexpr std::array kReasonNames = {"skip_item",    "unsupported",   "prohibited_device",
                                     "propagation",  "unused_sample", "unresolved",
                                     "not_packable", "bad_format"};

std::size_t ReasonIndex(ELeftOut reason) { return static_cast<std::size_t>(reason) - 1; }

std::uint64_t PackageSize(const CPackJobState& state) {
  return NSBigFilePackage::CStdioMedia::OpenForReading(state.fOutputFile.Path())->Size();
}

/// Millions of bytes a second.
double Speed(const CPackSummary& summary, double seconds) {
  return seconds <= 0 ? 0 : static_cast<double>(summary.fTotal.fBytesIn) / 1e6 / seconds;
}

CJson TypesOf(const CTextResources& texts, const CPackSummary& summary) {
  CJson types = CJson::Array();
  for (const CPackSummary::CType& type : summary.fTypes) {
    types.Append({{"type", type.fTypeCode},
                  {"type_name", Utf8FromText(EntryTypeName(texts, type.fTypeCode))},
                  {"files", type.fFiles},
                  {"bytes_in", type.fBytesIn},
                  {"bytes_out", type.fBytesOut}});
  }
  return types;
}

CJson LeftOutOf(const CPackSummary& summary) {
  CJson all = CJson::Array();
  for (const CPackSummary::CLeftOut& leftOut : summary.fLeftOut) {
    CJson files = CJson::Array();
    for (const std::u16string& file : leftOut.fFiles) files.Append(Utf8FromText(file));
    all.Append({{"reason", kReasonNames.at(ReasonIndex(leftOut.fReason))}, {"files", files}});
  }
  return all;
}

void PrintEvent(const CConsole& console, const CTextResources& texts, const CPackJobState& state,
                double seconds) {
  const CPackSummary summary = SummarizePacking(state);
  console.PrintJson({{"event", "summary"},
                     {"types", TypesOf(texts, summary)},
                     {"files", summary.fTotal.fFiles},
                     {"bytes_in", summary.fTotal.fBytesIn},
                     {"bytes_out", summary.fTotal.fBytesOut},
                     {"package_size", PackageSize(state)},
                     {"seconds", seconds},
                     {"left_out", LeftOutOf(summary)}});
}

/// A row of the table: what it is about, then its figures.
using CRow = std::array<std::string, 5>;

CRow RowOf(const CTextResources& texts, const std::u16string& name,
           const CPackSummary::CType& type) {
  const double ratio = type.fBytesIn == 0 ? 100
                                          : 100 * static_cast<double>(type.fBytesOut) /
                                                static_cast<double>(type.fBytesIn);
  const std::u16string percent =
      texts.Text(kSummaryPercent, {TextFromUtf8(fmt::format("{:.1f}", ratio))});
  return {Printable(name), std::to_string(type.fFiles), std::to_string(type.fBytesIn),
          std::to_string(type.fBytesOut), Printable(percent)};
}

void NoteTable(const CConsole& console, const CTextResources& texts, const CPackSummary& summary) {
  std::vector<CRow> rows(1);
  for (std::size_t column = 0; column < rows[0].size(); ++column) {
    rows[0][column] = Printable(texts.Text(
        {kFirstSummaryColumn.fTable, kFirstSummaryColumn.fEntry + static_cast<int>(column)}));
  }
  for (const CPackSummary::CType& type : summary.fTypes) {
    rows.push_back(RowOf(texts, EntryTypeName(texts, type.fTypeCode), type));
  }
  rows.push_back(RowOf(texts, texts.Text(kSummaryTotal), summary.fTotal));
  std::array<std::size_t, std::tuple_size_v<CRow>> widths{};
  for (const CRow& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(TextFromUtf8(row[i])));
    }
  }
  for (const CRow& row : rows) {
    std::string line = PadRight(row[0], widths[0]);
    for (std::size_t i = 1; i < row.size(); ++i) line += "  " + PadLeft(row[i], widths[i]);
    console.Note(line);
  }
}

void NoteLeftOut(const CConsole& console, const CTextResources& texts,
                 const CPackSummary::CLeftOut& leftOut) {
  const std::u16string reason =
      texts.Text({kFirstLeftOutReason.fTable,
                  kFirstLeftOutReason.fEntry + static_cast<int>(ReasonIndex(leftOut.fReason))});
  const std::u16string count = TextFromUtf8(std::to_string(leftOut.fFiles.size()));
  console.Note(Printable(texts.Text(kSummaryLeftOut, {reason, count})));
  if (leftOut.fFiles.size() > kMostNames) return;
  for (const std::u16string& file : leftOut.fFiles) console.Note("    " + Printable(file));
}

}  // namespace

void NoteSummary(const CConsole& console, const CTextResources& texts, const CPackJobState& state,
                 double seconds) {
  if (console.Json()) return PrintEvent(console, texts, state, seconds);
  if (console.Quiet()) return;
  const CPackSummary summary = SummarizePacking(state);
  NoteTable(console, texts, summary);
  for (const CPackSummary::CLeftOut& leftOut : summary.fLeftOut) {
    NoteLeftOut(console, texts, leftOut);
  }
  console.Note(Printable(
      texts.Text(kSummaryRun, {TextFromUtf8(std::to_string(PackageSize(state))),
                               TextFromUtf8(fmt::format("{:.1f}", seconds)),
                               TextFromUtf8(fmt::format("{:.1f}", Speed(summary, seconds)))})));
}

}  // namespace NSTambraCli
