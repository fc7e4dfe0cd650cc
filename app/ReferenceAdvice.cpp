#include "app/ReferenceAdvice.h"

#include "app/ReferenceTree.h"
#include "references/ReferenceHints.h"

namespace NSTambraPacking {

namespace {

CStringNumber LeftOutHint(ELeftOut reason) {
  switch (reason) {
    case ELeftOut::kSkipItem:
      return kHintSkipItem;
    case ELeftOut::kUnsupported:
      return kHintUnsupported;
    case ELeftOut::kProhibitedDevice:
      return kHintProhibitedDevice;
    default:
      return kHintLeftOut;
  }
}

class CAdvisor {
 public:
  CAdvisor(const CTextResources& texts, const CPackJobState& state)
      : fTexts(texts), fState(state), fTree(state), fHints(fTree.Lookup(), LeftOutPaths(state)) {}

  /// Nothing for a reference that leads to a packed file, or into the package itself.
  std::vector<CReferenceAdvice> AdviseOn(const CJobEntry& entry) const {
    std::vector<CReferenceAdvice> advice;
    for (const CResolvedReference& reference : entry.fReferences) {
      if (reference.fNotFound != nullptr) {
        if (reference.fResolution.fClass == EReferenceClass::kInternal) continue;
        advice.push_back({entry.fFile.fPath, reference.fPrinted,
                          HintTexts(*reference.fNotFound, entry.fFile.fPath)});
      } else if (const CJobEntry* const found = LeftOutEntry(reference.fResolution.fPath)) {
        advice.push_back(
            {entry.fFile.fPath, reference.fPrinted, {LeftOutText(found->fFile.fPath)}});
      }
    }
    return advice;
  }

 private:
  static std::vector<std::u16string> LeftOutPaths(const CPackJobState& state) {
    std::vector<std::u16string> paths;
    for (const CJobEntry& entry : state.fEntries) {
      if (entry.fLeftOut != ELeftOut::kNo) paths.push_back(entry.fFile.fPath);
    }
    return paths;
  }

  const CJobEntry* LeftOutEntry(const std::u16string& path) const {
    const auto found = fState.fEntryOfPath.find(path);
    if (found == fState.fEntryOfPath.end()) return nullptr;
    const CJobEntry& entry = fState.fEntries[found->second];
    return entry.TakesPart() ? nullptr : &entry;
  }

  std::u16string LeftOutText(const std::u16string& path) const {
    const CJobEntry* const entry = LeftOutEntry(path);
    return fTexts.Text(LeftOutHint(entry == nullptr ? ELeftOut::kNo : entry->fLeftOut), {path});
  }

  std::vector<std::u16string> HintTexts(const CSampleReference& reference,
                                        const std::u16string& document) const {
    std::vector<std::u16string> texts;
    for (const CReferenceHint& hint : fHints.Find(reference, document)) {
      texts.push_back(HintText(hint, reference));
    }
    return texts;
  }

  std::u16string HintText(const CReferenceHint& hint, const CSampleReference& reference) const {
    switch (hint.fKind) {
      case EReferenceHintKind::kLeftOut:
        return LeftOutText(hint.fPath);
      case EReferenceHintKind::kOutsideTree:
        return fTexts.Text(kHintOutside);
      case EReferenceHintKind::kOtherFolder:
        return fTexts.Text(SpelledAlike(hint.fPath, reference) ? kHintOtherFolder : kHintOtherCase,
                           {hint.fPath});
      case EReferenceHintKind::kOtherExtension:
      case EReferenceHintKind::kSimilarName:
        break;
    }
    return fTexts.Text(kHintOtherName, {hint.fPath});
  }

  /// True when the reference ends with the very name that was found.
  static bool SpelledAlike(const std::u16string& path, const CSampleReference& reference) {
    const std::u16string name = path.substr(path.rfind(u'/') + 1);
    return reference.PrintPath().ends_with(name);
  }

  const CTextResources& fTexts;
  const CPackJobState& fState;
  CReferenceTree fTree;
  CReferenceHints fHints;
};

}  // namespace

std::vector<CReferenceAdvice> AdviseOnReferences(const CTextResources& texts,
                                                 const CPackJobState& state) {
  const CAdvisor advisor(texts, state);
  std::vector<CReferenceAdvice> all;
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart()) continue;
    std::vector<CReferenceAdvice> advice = advisor.AdviseOn(entry);
    all.insert(all.end(), std::make_move_iterator(advice.begin()),
               std::make_move_iterator(advice.end()));
  }
  return all;
}

}  // namespace NSTambraPacking
