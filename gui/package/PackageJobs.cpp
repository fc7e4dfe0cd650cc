#include "gui/package/PackageJobs.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/EntryComparison.h"
#include "app/PackageCheck.h"
#include "app/PackageComparison.h"
#include "app/PackageTextNumbers.h"
#include "app/PrintableText.h"
#include "codecs/LQXLibrary.h"
#include "gui/QtText.h"
#include "gui/package/PackageListing.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;
using NSTolbrook::TextFromUtf8;

/// True for the first call and then once in a while.
class CPulse {
 public:
  bool Beats() {
    const auto now = std::chrono::steady_clock::now();
    if (now < fNext) return false;
    fNext = now + std::chrono::milliseconds(50);
    return true;
  }

 private:
  std::chrono::steady_clock::time_point fNext;
};

int Thousandths(std::uint64_t done, std::uint64_t all) {
  return all == 0 ? 1000 : static_cast<int>(1000 * done / all);
}

QString Shown(const std::u16string& text) { return ToQt(PrintableText(text)); }

std::u16string Count(std::size_t count) { return TextFromUtf8(std::to_string(count)); }

CResultLine LineOf(const CTextResources& texts, CStringNumber what, const std::u16string& path,
                   const std::u16string& detail) {
  return {ToQt(texts.Text(what)), Shown(path), ShownText(detail), ToQt(path)};
}

bool IsAmong(EDifference kind, EDifference first, EDifference last) {
  return kind >= first && kind <= last;
}

/// The heaviest of what is different.
CStringNumber WhatChanged(const CChange& change) {
  const auto any = [&change](EDifference first, EDifference last) {
    return std::ranges::any_of(change.fDifferences, [=](const CDifference& difference) {
      return IsAmong(difference.fKind, first, last);
    });
  };
  if (any(EDifference::kDamagedBefore, EDifference::kDamagedAfter)) return kResultDamaged;
  if (any(EDifference::kLength, EDifference::kSound)) return kResultSound;
  if (any(EDifference::kReferenceRemoved, EDifference::kReferenceAdded)) return kResultReferences;
  if (any(EDifference::kRootKey, EDifference::kExtraInformation)) return kResultMetadata;
  return kResultContent;
}

CStringNumber HeaderLabel(const std::u16string& field) {
  if (field == u"name") return kInfoName;
  if (field == u"version") return kInfoVersion;
  if (field == u"url") return kInfoAddress;
  return field == u"copyright" ? kInfoCopyright : kInfoComment;
}

void AddChange(const CTextResources& texts, const CChange& change,
               std::vector<CResultLine>& lines) {
  switch (change.fKind) {
    case CChange::EKind::kHeader: {
      const CDifference& difference = change.fDifferences.front();
      lines.push_back({ToQt(texts.Text(kResultHeader)),
                       ToQt(texts.Text(HeaderLabel(change.fName))),
                       Shown(texts.Text(kBeforeAndAfter, {difference.fBefore.substr(0, 200),
                                                          difference.fAfter.substr(0, 200)})),
                       {}});
      return;
    }
    case CChange::EKind::kRemoved:
      lines.push_back(LineOf(texts, kResultRemoved, change.fName, {}));
      return;
    case CChange::EKind::kAdded:
      lines.push_back(LineOf(texts, kResultAdded, change.fName, {}));
      lines.back().fPath.clear();
      return;
    case CChange::EKind::kChanged:
      break;
  }
  for (const CDifference& difference : change.fDifferences) {
    CStringNumber number = kFirstDifference;
    number.fEntry += static_cast<int>(difference.fKind);
    lines.push_back(LineOf(texts, WhatChanged(change), change.fName,
                           texts.Text(number, {difference.fBefore, difference.fAfter})));
  }
}

}  // namespace

QString VerifyPackage(const CJobContext& context) {
  const CTextResources& texts = context.fTexts;
  const auto library = CLQXLibrary::Find({}, NSTolbrook::ProgramFolder());
  CPulse pulse;
  CPackageCheckOptions options;
  options.fLibrary = library.get();
  options.fJobs = std::max(1u, std::thread::hardware_concurrency());
  options.fStopRequested = [&] { return context.fLink.StopRequested(); };
  options.fProgress = [&](std::uint64_t done, std::uint64_t all, const std::u16string& path) {
    if (pulse.Beats()) context.fView.fProgress(Thousandths(done, all), Shown(path));
  };
  const CVerificationResult result = CheckPackage(context.fPackage.Media(), options);
  std::vector<CResultLine> lines;
  for (const auto& [entry, message] : result.fFailed) {
    lines.push_back(LineOf(texts, kResultDamaged, entry->Path(), TextFromUtf8(message)));
  }
  for (const auto& [entry, references] : result.fBroken) {
    for (const std::u16string& reference : references) {
      lines.push_back(LineOf(texts, kResultBroken, entry->Path(), reference));
    }
  }
  context.fView.fLines(lines);
  return ToQt(lines.empty() ? texts.Text(kTambraSound, {Count(result.fVerifiedCount)})
                            : texts.Text(kTambraDamaged));
}

QString ComparePackageWith(const CJobContext& context, const NSTolbrook::NativePath& other) {
  const CTextResources& texts = context.fTexts;
  const COpenedPackage second = OpenPackageFile(other);
  context.fView.fProgress(-1, {});
  CPulse pulse;
  std::vector<CResultLine> lines;
  const auto handOver = [&] {
    context.fView.fLines(lines);
    lines.clear();
  };
  const std::size_t count = ComparePackages(
      context.fPackage.Media(), second.fMedia,
      [&](const CChange& change) {
        AddChange(texts, change, lines);
        if (pulse.Beats()) handOver();
      },
      [&] { context.fLink.CheckStop(); });
  handOver();
  return ToQt(count == 0 ? texts.Text(kNoDifferences)
                         : texts.Text(kDifferenceCount, {Count(count)}));
}

QString ExtractEntries(const CJobContext& context, CPackageEntries entries,
                       const NSTolbrook::NativePath& folder,
                       CPackageExtractor::EExisting existing) {
  const CTextResources& texts = context.fTexts;
  std::uint64_t all = 0;
  for (const auto& entry : entries) all += entry->Data()->Size();
  const std::size_t count = entries.size();
  std::uint64_t done = 0;
  std::size_t damaged = 0;
  std::size_t relocated = 0;
  CPulse pulse;
  std::vector<CResultLine> lines;
  const CPackageExtractor extractor(std::move(entries), folder, existing);
  extractor.Extract({[&](std::size_t, const CPackageEntry& entry) {
                       if (pulse.Beats())
                         context.fView.fProgress(Thousandths(done, all), Shown(entry.Path()));
                     },
                     [&](const CPackageEntry& entry, const CExtractedEntry& outcome) {
                       done += entry.Data()->Size();
                       const bool isDamaged = outcome.fKind == CExtractedEntry::EKind::kDamaged;
                       if (isDamaged) ++damaged;
                       if (!isDamaged && HoldsReferences(entry)) ++relocated;
                       if (outcome.fKind == CExtractedEntry::EKind::kWhole) return;
                       lines.push_back(LineOf(texts, isDamaged ? kResultFailed : kResultDifferent,
                                              entry.Path(), TextFromUtf8(outcome.fReason)));
                     },
                     [&] { context.fLink.CheckStop(); }});
  context.fView.fLines(lines);
  std::u16string told = texts.Text(
      kDemoWritten, {Count(count - damaged), TextFromUtf8(NSTolbrook::DisplayText(folder))});
  if (damaged > 0) told += u' ' + texts.Text(kExtractionDamaged, {Count(damaged), Count(count)});
  if (relocated > 0) told += u' ' + texts.Text(kExtractedRelocated, {Count(relocated)});
  return Shown(told);
}

}  // namespace NSTambraGui
