#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "references/SampleReference.h"
#include "references/XMLElement.h"

namespace NSTambraPacking {

/// The greatest patch that is taken into memory, in bytes.
inline constexpr std::uint64_t kGreatestVorlinkPatch = std::uint64_t{64} << 20;

/// The device identifier must end within so many bytes of a patch's start.
inline constexpr std::size_t kVorlinkHeadLength = 1024;

/// The value of "deviceID" of the root "Patch", when it stands within `head`; else empty. Throws
/// XFormatViolation for faults of the text before that point.
std::u16string VorlinkDeviceIdentifier(std::string_view head);

/// The same from the first kVorlinkHeadLength bytes of a file. Throws XFormatViolation "missing
/// device identifier in Vorlink patch" when it is empty.
std::u16string ReadVorlinkDeviceIdentifier(const NSBigFilePackage::IMedia& media);

/// The patch of a plug-in device: an XML document with root "Patch", whose children "Samples" hold
/// "SampleReference" elements.
class CVorlinkPatch {
 public:
  /// Reads all of the patch that faults call `name`. Throws XFormatViolation, XVersionTooNew as
  /// LoadXMLDocument, CSampleReference::Parse, for a root that is no "Patch", and above
  /// kGreatestVorlinkPatch.
  explicit CVorlinkPatch(const NSBigFilePackage::IMedia& media,
                         const std::string& name = "Vorlink patch");
  explicit CVorlinkPatch(std::string text, const std::string& name = "Vorlink patch");

  /// In the order of the document.
  const std::vector<CSampleReference>& References() const { return fReferences; }

  /// The text with `replacements` in the place of References(), as many and in the same order: from
  /// the "<" of each to its last ">"; every other byte is as it was.
  std::string Rewritten(std::span<const CSampleReference> replacements) const;

 private:
  void ReadReferences(const std::string& name);

  std::string fText;
  std::vector<CSampleReference> fReferences;
  std::vector<NSTolbrook::CXMLSourceRange> fRanges;
};

}  // namespace NSTambraPacking
