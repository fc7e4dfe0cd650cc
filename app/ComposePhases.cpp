#include <algorithm>
#include <optional>
#include <thread>

#include "app/PackPhases.h"
#include "app/SpecialNames.h"
#include "codecs/JpegReader.h"
#include "package/PackageComposer.h"
#include "package/PackageFormat.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CTemporaryFile;

/// Removes what was composed so far and, at the same time, the packed entries: giving back the room
/// of large files takes a while, and a user who stopped the run waits for it.
void RemoveBoth(std::optional<CTemporaryFile>& composed, CPackJobState& state) {
  std::thread other;
  try {
    other = std::thread([&state] { state.RemovePackedEntries(); });
  } catch (const std::exception&) {
    state.RemovePackedEntries();  // no memory for a thread: one behind the other, then
  }
  composed.reset();
  if (other.joinable()) other.join();
}

}  // namespace

void ListPackageEntries(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  const CPhaseReport report = context.Report(5);
  report.CheckStop();
  report.Begin(state.fEntries.size());
  for (std::size_t index = 0; index < state.fEntries.size(); ++index) {
    const CJobEntry& entry = state.fEntries[index];
    report.Item(index, *entry.fEntry);
    if (entry.fFile.fIsInformation || entry.TakesPart()) {
      state.fPackageEntries.push_back(entry.fEntry);
    }
  }
  report.End();
}

void PlacePackageEntries(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  const CPhaseReport report = context.Report(6);
  report.CheckStop();
  report.Begin(state.fPackageEntries.size());
  std::uint64_t end = 0;
  for (std::size_t index = 0; index < state.fPackageEntries.size(); ++index) {
    const CPackageEntry& entry = *state.fPackageEntries[index];
    report.Item(index, entry);
    if (CSpecialNames().KindOf(entry.Path()) == ESpecialFile::kInformation) continue;
    end += entry.Data()->Size();
    FitPackageLimit(end, "the package's data");
  }
  report.End();
}

void ComposePackage(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  std::optional<CTemporaryFile> file(std::in_place, state.fSettings.fOutputFolder.Path());
  file->SetFlush(NSBigFilePackage::CStdioMedia::EFlush::kAsWritten);
  try {
    CSpecialNames names;
    const CJpegReader pictures;
    CPackageComposer composer(names, pictures, context.fJob, context.fProgress);
    state.fHeader = composer.Compose(state.fPackageEntries, *file->Media());
    context.Report(7).CheckStop();
  } catch (...) {
    RemoveBoth(file, state);
    throw;
  }
  file->CommitAs(state.fOutputFile.Path());
  state.fPackageWritten = true;
  state.fInformation.fFileCount = state.fHeader.fFileCount;
}

}  // namespace NSTambraPacking
