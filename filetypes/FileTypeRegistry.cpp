#include "filetypes/FileTypeRegistry.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/FileTypeTable.h"

namespace NSTambraPacking {

namespace {

template <class Registry>
auto FindHandler(const Registry& registry, const NSTolbrook::CFileItem& file) ->
    typename Registry::mapped_type {
  const auto found = std::find_if(registry.begin(), registry.end(),
                                  [&](const auto& row) { return row.first.Matches(file); });
  return found == registry.end() ? nullptr : found->second;
}

template <class Verifier>
const Verifier& Required(const Verifier* verifier) {
  if (verifier == nullptr) throw NSMordel::XUnsupportedFormat("No verifier found for format");
  return *verifier;
}

}  // namespace

const CFileTypeRegistry& CFileTypeRegistry::Instance() {
  static const CFileTypeRegistry registry;
  return registry;
}

CFileTypeRegistry::CFileTypeRegistry() {
  for (const CFileTypeRow& row : RegisteredFileTypes()) {
    const CFileTypeDescriptor descriptor(row.fExtensions, row.fTypeCode);
    fVerifiers.emplace(descriptor, row.fHandlers.fVerifier.get());
    fPackers.emplace(descriptor, row.fHandlers.fPacker.get());
    fPackedEntryVerifiers.emplace(row.fHandlers.fPacker->EntryTypeCode(),
                                  row.fHandlers.fPackedEntryVerifier.get());
    if (row.fHandlers.fHasReferences) {
      fWithReferences.insert(row.fHandlers.fPacker->EntryTypeCode());
    }
  }
}

const IFileTypeVerifier* CFileTypeRegistry::FindVerifier(const NSTolbrook::CFileItem& file) const {
  return FindHandler(fVerifiers, file);
}

const IFileTypePacker* CFileTypeRegistry::FindPacker(const NSTolbrook::CFileItem& file) const {
  return FindHandler(fPackers, file);
}

const IFileTypeVerifier* CFileTypeRegistry::FindPackedEntryVerifier(std::int32_t typeCode) const {
  const auto found = fPackedEntryVerifiers.find(typeCode);
  return found == fPackedEntryVerifiers.end() ? nullptr : found->second;
}

void CFileTypeRegistry::VerifyFile(const NSTolbrook::CFileItem& file,
                                   CVerifyContext& context) const {
  const IFileTypeVerifier& verifier = Required(FindVerifier(file));
  const NSBigFilePackage::SharedMedia source = OpenSource(file);
  if (source == nullptr) throw NSMordel::XOpen();
  context.fSourceSize = source->Size();
  verifier.Verify(source, context);
}

void CFileTypeRegistry::VerifyPackedEntry(std::int32_t typeCode,
                                          const NSBigFilePackage::SharedMedia& data,
                                          CVerifyContext& context) const {
  Required(FindPackedEntryVerifier(typeCode)).Verify(data, context);
}

}  // namespace NSTambraPacking
