#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "filetypes/FileTypeDescriptor.h"
#include "filetypes/FileTypeInterfaces.h"

namespace NSTambraPacking {

/// Finds the handlers of a file by its type and the verifier of a package entry by its type code.
/// Read-only after it is built, and so safe from several threads.
class CFileTypeRegistry {
 public:
  /// The registry of the program's file type table, built once on first use.
  static const CFileTypeRegistry& Instance();

  /// The handler of the first type, in the order of descriptors, that the file is of; nullptr when
  /// it is of none.
  const IFileTypeVerifier* FindVerifier(const NSTolbrook::CFileItem& file) const;
  const IFileTypePacker* FindPacker(const NSTolbrook::CFileItem& file) const;
  /// nullptr when no type has this code.
  const IFileTypeVerifier* FindPackedEntryVerifier(std::int32_t typeCode) const;

  /// True for the type codes of patches and songs.
  bool HasReferences(std::int32_t typeCode) const { return fWithReferences.contains(typeCode); }

  /// Verifies a file of the input folder. Throws XUnsupportedFormat "No verifier found for format"
  /// when it is of no type, XOpen when it cannot be opened, and whatever the verifier throws.
  void VerifyFile(const NSTolbrook::CFileItem& file, CVerifyContext& context) const;

  /// Verifies the data of an entry as read back from a package; throws as VerifyFile.
  void VerifyPackedEntry(std::int32_t typeCode, const NSBigFilePackage::SharedMedia& data,
                         CVerifyContext& context) const;

 private:
  CFileTypeRegistry();

  std::map<CFileTypeDescriptor, const IFileTypeVerifier*> fVerifiers;
  std::map<CFileTypeDescriptor, const IFileTypePacker*> fPackers;
  std::map<std::int32_t, const IFileTypeVerifier*> fPackedEntryVerifiers;
  std::set<std::int32_t> fWithReferences;
};

}  // namespace NSTambraPacking
