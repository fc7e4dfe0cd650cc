#pragma once

#include <cstddef>
#include <cstdint>

#include "references/ABCFormat.h"
#include "references/SampleReference.h"

namespace NSTambraPacking {

/// The kinds of reference that can be relocated.
inline constexpr std::uint32_t kSampleReferenceKind = 12;
inline constexpr std::uint32_t kLQXReferenceKind = 13;

/// Bytes that the document of a reference may have. Real ones have about a thousand.
inline constexpr std::size_t kGreatestReferenceLength = std::size_t{1} << 20;

/// The body of a "REFE" chunk: format version, u32 kind, string (the `SampleReference` document).
class CSF10ReferenceChunk : public NSTolbrook::CABCFormat {
 public:
  CSF10ReferenceChunk();
  CSF10ReferenceChunk(std::uint32_t kind, CSampleReference reference);

  /// 12 or 13 in a sound document; others are read, and refused when they are to be relocated.
  std::uint32_t Kind() const { return fKind; }
  const CSampleReference& Reference() const { return fReference; }
  void SetReference(CSampleReference reference) { fReference = std::move(reference); }

 private:
  void ReadBody(NSBigFilePackage::CMediaCursor& input) override;
  void WriteBody(NSBigFilePackage::CMediaCursor& output) const override;

  std::uint32_t fKind = kSampleReferenceKind;
  CSampleReference fReference;
};

/// The kind that belongs to a reference without chunk: that of its type, a sample when it has none.
std::uint32_t KindOfReference(const CSampleReference& reference);

/// The type that a reference of `kind` has when its document does not say.
ESampleType TypeOfKind(std::uint32_t kind);

}  // namespace NSTambraPacking
