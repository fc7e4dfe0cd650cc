#include "package/PackageVerifier.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/OrderedWork.h"

#include "package/PackageIndex.h"
#include "package/PackageReader.h"

namespace NSTambraPacking {

using NSBigFilePackage::IMedia;
using NSBigFilePackage::SharedMedia;

/// Passes reads through and keeps the first failure of the package file, so that it can be told
/// from an entry whose bytes merely end too early.
class CReadWatch : public IMedia {
 public:
  explicit CReadWatch(SharedMedia package) : fPackage(std::move(package)) {}

  std::uint64_t Size() const override { return fPackage->Size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    try {
      return fPackage->Read(position, destination);
    } catch (...) {
      const std::scoped_lock lock(fMutex);
      if (fFailure == nullptr) fFailure = std::current_exception();
      throw;
    }
  }
  void Write(std::uint64_t, std::span<const std::uint8_t>) override { Refuse(); }
  void SetSize(std::uint64_t) override { Refuse(); }
  void Flush() override {}

  void RethrowFailure() const {
    const std::scoped_lock lock(fMutex);
    if (fFailure != nullptr) std::rethrow_exception(fFailure);
  }

 private:
  [[noreturn]] static void Refuse() {
    throw NSMordel::XReadOnly("a package cannot be changed while it is verified");
  }

  SharedMedia fPackage;
  mutable std::mutex fMutex;
  mutable std::exception_ptr fFailure;
};

namespace {

/// What became of one entry; nothing in it refers to another entry or to the order of the work.
struct COutcome {
  std::optional<std::string> fFailure;
  std::vector<std::u16string> fBrokenReferences;
};

COutcome VerifyEntry(const IEntryVerifier& verifier, const CPackageEntry& entry,
                     const CReadWatch& watch) {
  COutcome outcome;
  try {
    outcome.fBrokenReferences = verifier.Verify(entry, entry.Flag() != kEntryTakenAsItIs);
  } catch (const NSMordel::XAbort&) {
    throw;
  } catch (const NSMordel::XSilentAbort&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& failure) {
    outcome.fFailure = failure.what();
  }
  watch.RethrowFailure();
  return outcome;
}

void AddOutcome(CVerificationResult& result, const std::shared_ptr<CPackageEntry>& entry,
                COutcome outcome) {
  ++result.fVerifiedCount;
  if (outcome.fFailure) {
    result.fFailed.push_back({entry, *std::move(outcome.fFailure)});
  } else if (!outcome.fBrokenReferences.empty()) {
    result.fBroken.push_back({entry, std::move(outcome.fBrokenReferences)});
  }
}

std::span<const std::shared_ptr<CPackageEntry>> UpToFirstToResolve(
    std::span<const std::shared_ptr<CPackageEntry>> entries) {
  const auto first = std::find_if(entries.begin(), entries.end(), [](const auto& entry) {
    return entry->Flag() != kEntryTakenAsItIs;
  });
  return entries.first(static_cast<std::size_t>(first - entries.begin()));
}

}  // namespace

void CompareHeaders(const CPackageHeader& found, const CPackageHeader& expected) {
  const auto require = [](bool equal, const char* message) {
    if (!equal) throw NSMordel::XFormatViolation(message);
  };
  require(found.fComment == expected.fComment, "header comment mismatch");
  require(found.fCopyright == expected.fCopyright, "header copyright mismatch");
  require(found.fDataStart == expected.fDataStart, "header datastart mismatch");
  require(found.fFileCount == expected.fFileCount, "header filecount mismatch");
  require(found.fIndexStart == expected.fIndexStart, "header indexstart mismatch");
  require(found.fTambraName == expected.fTambraName, "header tambraname mismatch");
  require(found.fURL == expected.fURL, "header url mismatch");
  require(found.fVersion == expected.fVersion, "header version mismatch");
}

CPackageVerifier::CPackageVerifier(IEntryVerifier& entryVerifier, CTambraPacker* job,
                                   ITambraPackingProgress* progress)
    : fEntryVerifier(entryVerifier), fReport(job, progress, kFinalVerifyPhase) {}

CVerificationResult CPackageVerifier::Verify(SharedMedia package,
                                             const CVerificationOptions& options) const {
  fReport.CheckStop();
  const auto watch = std::make_shared<CReadWatch>(std::move(package));
  const CPackageReader reader(watch);
  if (options.fExpectedHeader != nullptr) {
    CompareHeaders(reader.Header(), *options.fExpectedHeader);
  }
  const CEntries entries = reader.ReadEntries();
  fEntryVerifier.TakeEntries(entries);
  CVerificationResult result;
  result.fHeader = reader.Header();
  fReport.Begin(entries.size());
  const std::span<const CEntries::value_type> taken =
      options.fEndAtFirstToResolve ? UpToFirstToResolve(entries) : std::span(entries);
  VerifyEntries(taken, *watch, options.fJobs, result);
  if (taken.size() < entries.size()) fReport.Item(taken.size(), *entries[taken.size()]);
  fReport.End();
  return result;
}

void CPackageVerifier::VerifyEntries(std::span<const CEntries::value_type> entries,
                                     const CReadWatch& watch, unsigned jobs,
                                     CVerificationResult& result) const {
  std::vector<COutcome> outcomes(entries.size());
  std::vector<std::uint64_t> sizes;
  for (const auto& entry : entries) sizes.push_back(entry->Data()->Size());
  NSTolbrook::RunOrdered(
      {.fCount = entries.size(),
       .fJobs = jobs,
       .fWeights = std::move(sizes),
       .fBegin =
           [&](std::size_t i) {
             fReport.CheckStop();
             fReport.Item(i, *entries[i]);
           },
       .fWork =
           [&](std::size_t i) { outcomes[i] = VerifyEntry(fEntryVerifier, *entries[i], watch); },
       .fFinish = [&](std::size_t i) { AddOutcome(result, entries[i], std::move(outcomes[i])); },
       .fStopRequested = [&] { return fReport.StopRequested(); },
       .fCancel = [&] { fEntryVerifier.Cancel(); }});
}

}  // namespace NSTambraPacking
