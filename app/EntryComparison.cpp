#include "app/EntryComparison.h"

#include <algorithm>
#include <map>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "filetypes/FileTypeRegistry.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::IMedia;
using NSTolbrook::TextFromUtf8;

constexpr std::size_t kComparedPiece = 65536;

/// Lets a handler name the references of a document without looking anything up.
class CIdleResolver : public IReferenceResolver {
 public:
  CResolution Resolve(const CSampleReference&, std::u16string_view) const override { return {}; }
};

/// The printed references of a document and how often each stands in it.
using CReferenceCounts = std::map<std::u16string, int>;

CReferenceCounts ReferencesOf(const CPackageEntry& entry) {
  const CIdleResolver resolver;
  CVerifyContext context;
  context.fPath = entry.Path();
  context.fResolver = &resolver;
  CFileTypeRegistry::Instance().VerifyPackedEntry(entry.TypeCode(), entry.Data(), context);
  CReferenceCounts counts;
  for (const CResolvedReference& reference : context.fReferences) ++counts[reference.fPrinted];
  return counts;
}

/// Notes in `differences` that an entry cannot be read; XRead is a fault of the file, not of it.
template <class Read>
bool ReadsWell(EDifference damaged, std::vector<CDifference>& differences, const Read& read) {
  try {
    read();
    return true;
  } catch (const NSMordel::XRead&) {
    throw;
  } catch (const NSMordel::XSilentAbort&) {
    throw;
  } catch (const NSMordel::CExceptionBodyMixin& e) {
    differences.push_back({damaged, TextFromUtf8(e.Message()), {}});
    return false;
  }
}

void AddMissing(const CReferenceCounts& from, const CReferenceCounts& in, EDifference kind,
                std::vector<CDifference>& differences) {
  for (const auto& [reference, count] : from) {
    const auto other = in.find(reference);
    const int missing = count - (other == in.end() ? 0 : other->second);
    for (int i = 0; i < missing; ++i) differences.push_back({kind, reference, {}});
  }
}

std::vector<CDifference> CompareDocuments(const CPackageEntry& before, const CPackageEntry& after) {
  std::vector<CDifference> differences;
  CReferenceCounts old;
  CReferenceCounts young;
  const bool readsBefore =
      ReadsWell(EDifference::kDamagedBefore, differences, [&] { old = ReferencesOf(before); });
  const bool readsAfter =
      ReadsWell(EDifference::kDamagedAfter, differences, [&] { young = ReferencesOf(after); });
  if (readsBefore && readsAfter) {
    AddMissing(old, young, EDifference::kReferenceRemoved, differences);
    AddMissing(young, old, EDifference::kReferenceAdded, differences);
  }
  if (differences.empty()) differences.push_back({EDifference::kContent, {}, {}});
  return differences;
}

std::vector<CDifference> CompareContents(const CPackageEntry& before, const CPackageEntry& after,
                                         const std::function<void()>& checkStop) {
  if (HaveSameBytes(*before.Data(), *after.Data(), checkStop)) return {};
  const std::int32_t type = before.TypeCode();
  if (type == after.TypeCode()) {
    if (type == kSampleEntryType) return CompareSamples(before.Data(), after.Data(), checkStop);
    if (CFileTypeRegistry::Instance().HasReferences(type)) return CompareDocuments(before, after);
  }
  return {{EDifference::kContent, {}, {}}};
}

}  // namespace

bool HoldsReferences(const CPackageEntry& entry) {
  if (!CFileTypeRegistry::Instance().HasReferences(entry.TypeCode())) return false;
  CReferenceCounts references;
  std::vector<CDifference> faults;
  ReadsWell(EDifference::kDamagedAfter, faults, [&] { references = ReferencesOf(entry); });
  return !references.empty();
}

void CompareNumbers(EDifference kind, std::int64_t before, std::int64_t after,
                    std::vector<CDifference>& differences) {
  if (before == after) return;
  differences.push_back(
      {kind, TextFromUtf8(std::to_string(before)), TextFromUtf8(std::to_string(after))});
}

bool HaveSameBytes(const IMedia& left, const IMedia& right,
                   const std::function<void()>& checkStop) {
  if (left.Size() != right.Size()) return false;
  std::vector<std::uint8_t> buffer(2 * kComparedPiece);
  for (std::uint64_t position = 0; position < left.Size(); position += kComparedPiece) {
    if (checkStop) checkStop();
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(left.Size() - position, kComparedPiece));
    const auto first = std::span(buffer).first(count);
    const auto second = std::span(buffer).subspan(kComparedPiece, count);
    NSBigFilePackage::ReadExactly(left, position, first);
    NSBigFilePackage::ReadExactly(right, position, second);
    if (!std::ranges::equal(first, second)) return false;
  }
  return true;
}

std::vector<CDifference> CompareEntries(const CPackageEntry& before, const CPackageEntry& after,
                                        const std::function<void()>& checkStop) {
  std::vector<CDifference> differences = CompareContents(before, after, checkStop);
  CompareNumbers(EDifference::kType, before.TypeCode(), after.TypeCode(), differences);
  CompareNumbers(EDifference::kFlag, before.Flag(), after.Flag(), differences);
  return differences;
}

}  // namespace NSTambraPacking
