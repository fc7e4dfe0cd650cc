#include "app/PackageCheck.h"

#include <mutex>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/PackedEntryVerifier.h"
#include "package/PackageReader.h"

namespace NSTambraPacking {

namespace {

/// Tells how far the verifier of the types has come.
class CWatchedVerifier : public IEntryVerifier {
 public:
  CWatchedVerifier(const std::u16string& packageName, const CPackageCheckOptions& options)
      : fVerifier(packageName, options.fLibrary, options.fStopRequested), fOptions(options) {}

  void TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) override {
    fVerifier.TakeEntries(entries);
    for (const auto& entry : entries) fAll += entry->Data()->Size();
  }

  std::vector<std::u16string> Verify(const CPackageEntry& entry,
                                     bool resolveReferences) const override {
    // Many small entries are done before the first one asks by itself.
    if (fOptions.fStopRequested && fOptions.fStopRequested()) {
      throw NSMordel::XSilentAbort("User aborted");
    }
    Report(0, entry.Path());
    const auto done = [&] { Report(entry.Data()->Size(), entry.Path()); };
    try {
      std::vector<std::u16string> broken = fVerifier.Verify(entry, resolveReferences);
      done();
      return broken;
    } catch (...) {
      done();
      throw;
    }
  }

  void Cancel() override { fVerifier.Cancel(); }

 private:
  void Report(std::uint64_t bytes, const std::u16string& path) const {
    if (!fOptions.fProgress) return;
    const std::scoped_lock lock(fMutex);
    fDone += bytes;
    fOptions.fProgress(fDone, fAll, path);
  }

  CPackedEntryVerifier fVerifier;
  const CPackageCheckOptions& fOptions;
  std::uint64_t fAll = 0;
  mutable std::mutex fMutex;
  mutable std::uint64_t fDone = 0;
};

}  // namespace

CVerificationResult CheckPackage(const NSBigFilePackage::SharedMedia& package,
                                 const CPackageCheckOptions& options) {
  CWatchedVerifier verifier(CPackageReader(package).Header().fTambraName, options);
  CVerificationOptions verification;
  verification.fJobs = options.fJobs;
  return CPackageVerifier(verifier, nullptr, nullptr).Verify(package, verification);
}

}  // namespace NSTambraPacking
