#include "app/SkipRules.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "app/FileTypeNames.h"

namespace NSTambraPacking {

namespace {

bool IsSample(const CPackageEntry& entry) {
  return entry.TypeCode() == kSampleEntryType || IsContainerType(entry.TypeCode());
}

/// True when the reference leads to a file of the input folder that is not meant for the package.
bool IsLeftOut(const CPackJobState& state, const CResolvedReference& reference) {
  if (!reference.fResolution.IsFound()) return false;
  const auto found = state.fEntryOfPath.find(reference.fResolution.fPath);
  return found != state.fEntryOfPath.end() && !state.fEntries[found->second].TakesPart();
}

void JudgeProhibitedDevices(CPackJobState& state) {
  for (CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart() || entry.fProhibitedDevices.empty()) continue;
    if (state.fOptions.fWarnAboutProhibitedDevices) {
      state.fLists.fProhibited.push_back(
          {entry.fFile.fPath, {entry.fProhibitedDevices.begin(), entry.fProhibitedDevices.end()}});
    }
    if (state.fOptions.fSkipProhibitedDevices) entry.fLeftOut = ELeftOut::kProhibitedDevice;
  }
}

/// A document that is left out leaves out those that refer to it in turn, in whatever order they
/// stand.
void PropagateSkips(CPackJobState& state) {
  if (!state.fOptions.fPropagateSampleSkipping) return;
  std::unordered_map<std::u16string, std::vector<CJobEntry*>> referrers;  // by what they refer to
  std::vector<const CJobEntry*> leftOut;
  for (CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart()) {
      leftOut.push_back(&entry);
      continue;
    }
    for (const CResolvedReference& reference : entry.fReferences) {
      if (reference.fResolution.IsFound()) {
        referrers[reference.fResolution.fPath].push_back(&entry);
      }
    }
  }
  while (!leftOut.empty()) {
    const auto found = referrers.find(leftOut.back()->fFile.fPath);
    leftOut.pop_back();
    if (found == referrers.end()) continue;
    for (CJobEntry* const entry : found->second) {
      if (!entry->TakesPart()) continue;
      entry->fLeftOut = ELeftOut::kPropagation;
      leftOut.push_back(entry);
    }
  }
  for (const CJobEntry& entry : state.fEntries) {
    if (entry.fLeftOut == ELeftOut::kPropagation) {
      state.fLists.fSkipped.push_back(entry.fFile.fPath);
    }
  }
}

void JudgeUnusedSamples(CPackJobState& state) {
  std::unordered_set<std::u16string> used;
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart()) continue;
    for (const CResolvedReference& reference : entry.fReferences) {
      used.insert(reference.fResolution.fPath);
    }
  }
  for (CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart() || !IsSample(*entry.fEntry) || used.contains(entry.fFile.fPath)) {
      continue;
    }
    if (state.fOptions.fWarnAboutUnusedSamples) {
      state.fLists.fUnreferenced.push_back(entry.fFile.fPath);
    }
    if (state.fOptions.fSkipUnusedSamples) entry.fLeftOut = ELeftOut::kUnusedSample;
  }
}

/// Sorts the references that do not lead to a packed file: into the lists of the log, or, when the
/// package itself is meant to have the file already, nowhere.
void JudgeReferences(CPackJobState& state, const CJobEntry& entry) {
  CPackLists::CEntryReferences unresolved{entry.fFile.fPath, {}};
  CPackLists::CEntryNames external{entry.fFile.fPath, {}};
  for (const CResolvedReference& reference : entry.fReferences) {
    const bool isExternal = reference.fResolution.fClass == EReferenceClass::kExternal;
    if (isExternal && !reference.fTambraName.empty()) {
      external.fNames.push_back(reference.fTambraName);
    } else if (isExternal || IsLeftOut(state, reference)) {
      unresolved.fReferences.push_back(reference.fPrinted);
    }
  }
  if (!unresolved.fReferences.empty()) state.fLists.fUnresolved.push_back(std::move(unresolved));
  if (!external.fNames.empty()) state.fLists.fExternal.push_back(std::move(external));
}

}  // namespace

void ApplySkipRules(CPackJobState& state) {
  JudgeProhibitedDevices(state);
  PropagateSkips(state);
  JudgeUnusedSamples(state);
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart()) continue;
    if (entry.fFailed) state.fLists.fFailed.push_back(entry.fFile.fPath);
    JudgeReferences(state, entry);
  }
}

}  // namespace NSTambraPacking
