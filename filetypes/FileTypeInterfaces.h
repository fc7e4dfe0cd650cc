#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/FileItem.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"
#include "Parts/TolbrookPackage/Core/Media.h"

#include "references/ReferenceInterfaces.h"

namespace NSTambraPacking {

class ISlicedLoopLibrary;

/// What is worth telling the user about a file that was accepted all the same.
enum class ERemark {
  kSamplesConverted,     ///< the samples were converted to 16 or 24 bits: not the same bits
  kSourceNotRestorable,  ///< the samples are the same, but the source file's bytes are not kept
  kLoopStructureOnly,    ///< no sliced-loop library: only the chunk structure was checked
};

/// A reference of a document and where it leads.
struct CResolvedReference {
  /// As it stands in the packing log.
  std::u16string fPrinted;
  /// The package that the reference says it leads into; empty when it says none.
  std::u16string fTambraName;
  CResolution fResolution;
  /// The reference itself when its file was not found, to tell why; else null.
  std::shared_ptr<const CSampleReference> fNotFound;
};

/// What handlers of both kinds are given besides the file. One context serves one file; the
/// objects it points to are shared by all of them and outlive it.
struct CHandlerContext {
  /// The file's path from the input root, the same as inside the package.
  std::u16string fPath;
  /// Asked now and then during long work; empty means never to stop.
  std::function<bool()> fStopRequested;
  /// Filled by the handler.
  std::set<ERemark> fRemarks;

  /// Throws XSilentAbort "User aborted" when the user has asked to stop.
  void CheckStop() const;
};

struct CVerifyContext : CHandlerContext {
  std::vector<std::u16string> fProhibitedDevices;
  /// Null when references are not to be looked up: the entry is then checked as it is.
  const IReferenceResolver* fResolver = nullptr;
  /// May be null: sliced-loop files are then checked by their structure alone.
  const ISlicedLoopLibrary* fSlicedLoopLibrary = nullptr;
  /// Filled by the handler: those of fProhibitedDevices that the file uses.
  std::set<std::u16string> fProhibitedDevicesUsed;
  /// Filled by the registry for a file of the input folder: bytes.
  std::uint64_t fSourceSize = 0;
  /// Filled by the handler when there is a resolver: every reference, in document order.
  std::vector<CResolvedReference> fReferences;
};

struct CPackContext : CHandlerContext {
  /// Rewrites the references of patches and songs; other files do without.
  const IReferenceRelocator* fRelocator = nullptr;
  /// Filled by the handler: the references that could not be relocated, printed.
  std::vector<std::u16string> fUnresolved;
};

/// Checks files of one type, both in the input folder and read back from a finished package.
class IFileTypeVerifier {
 public:
  virtual ~IFileTypeVerifier() = default;
  /// Returns when the file is acceptable and throws an exception of the family when it is not; an
  /// empty message is deliberate where the alert says it all. Safe from several threads at once.
  virtual void Verify(const NSBigFilePackage::SharedMedia& source,
                      CVerifyContext& context) const = 0;
};

/// Turns files of one type into package entries.
class IFileTypePacker {
 public:
  virtual ~IFileTypePacker() = default;
  /// The kind of the entries that this packer writes.
  virtual std::int32_t EntryTypeCode() const = 0;
  /// Not 0 when packing is worth remembering: it takes long, and what it writes and remarks, and
  /// what the verifier of such entries says of it, depend on nothing but the source's bytes and
  /// this number.
  virtual NSTolbrook::FourCharCode CacheKind() const { return 0; }
  /// Writes the entry's data to the empty media `destination`. Throws XOpen when the source cannot
  /// be opened. Safe from several threads at once.
  virtual void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
                    CPackContext& context) const = 0;
};

/// Opens a source file for reading; throws XOpen with an empty text when it yields no stream.
NSBigFilePackage::SharedMedia OpenSource(const NSTolbrook::CFileItem& source);

}  // namespace NSTambraPacking
