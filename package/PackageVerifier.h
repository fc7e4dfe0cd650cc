#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "package/PackageEntry.h"
#include "package/PackageHeader.h"
#include "package/PhaseReport.h"

namespace NSTambraPacking {

/// The phase in which the finished package is read back.
inline constexpr int kFinalVerifyPhase = 8;

/// Checks one entry of a finished package by its type.
class IEntryVerifier {
 public:
  virtual ~IEntryVerifier() = default;
  /// Called once, with all entries of the package, before the first is verified. Throws what is
  /// wrong with them as a whole, which ends the verification.
  virtual void TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) = 0;
  /// Returns the printed forms of the references that lead to no entry of the package; only asked
  /// for when `resolveReferences` is true. Throws what is wrong with the entry, an empty message
  /// included, and XAbort or XSilentAbort to end the verification. Safe from several threads.
  virtual std::vector<std::u16string> Verify(const CPackageEntry& entry,
                                             bool resolveReferences) const = 0;
  /// Called when the verification ends early: calls of Verify that are still busy end soon.
  virtual void Cancel() = 0;
};

/// An entry that failed its verifier, and why (the failure's message, which may be empty).
struct CFailedEntry {
  std::shared_ptr<CPackageEntry> fEntry;
  std::string fMessage;
};

/// An entry with references that lead nowhere.
struct CBrokenEntry {
  std::shared_ptr<CPackageEntry> fEntry;
  std::vector<std::u16string> fReferences;
};

/// What the verification found, both lists in the order of the index, each entry once in one.
struct CVerificationResult {
  CPackageHeader fHeader;
  std::vector<CFailedEntry> fFailed;
  std::vector<CBrokenEntry> fBroken;
  /// Number of entries that were verified, failed ones included.
  std::size_t fVerifiedCount = 0;
};

struct CVerificationOptions {
  /// The header that the composer returned; nullptr for a package of which nothing is known.
  const CPackageHeader* fExpectedHeader = nullptr;
  /// Ends the verification, without fault, at the first entry whose references would have to be
  /// resolved.
  bool fEndAtFirstToResolve = false;
  /// Threads that verify entries.
  unsigned fJobs = 1;
};

/// Compares a header read back with the expected one: comment, copyright, datastart, filecount,
/// indexstart, tambraname, url, version. The first difference throws XFormatViolation "header
/// comment mismatch" and so on.
void CompareHeaders(const CPackageHeader& found, const CPackageHeader& expected);

class CReadWatch;

/// Reads a finished package back and verifies each of its entries.
class CPackageVerifier {
 public:
  /// All must outlive the verifier; `job` and `progress` may be null (see CPhaseReport).
  CPackageVerifier(IEntryVerifier& entryVerifier, CTambraPacker* job,
                   ITambraPackingProgress* progress);

  /// Checks header, index and entries, in this order. An entry that fails is noted in the result
  /// and the next one is taken up. Throws
  /// - XSilentAbort "User aborted" on a stop request, asked at the start and before each entry,
  ///   and any XAbort or XSilentAbort of the entry verifier;
  /// - as CPackageReader's constructor, CompareHeaders and CPackageReader::ReadEntries;
  /// - any failure to read `package` itself, whatever the entry verifier makes of it, and
  ///   std::bad_alloc: neither says anything about an entry.
  CVerificationResult Verify(NSBigFilePackage::SharedMedia package,
                             const CVerificationOptions& options) const;

 private:
  using CEntries = std::vector<std::shared_ptr<CPackageEntry>>;

  void VerifyEntries(std::span<const CEntries::value_type> entries, const CReadWatch& watch,
                     unsigned jobs, CVerificationResult& result) const;

  IEntryVerifier& fEntryVerifier;
  CPhaseReport fReport;
};

}  // namespace NSTambraPacking
