#include "references/VorlinkPatch.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "references/ReferenceChunk.h"
#include "references/XMLReader.h"
#include "references/XMLWriter.h"

namespace NSTambraPacking {

namespace {

using NSMordel::XFormatViolation;
using NSTolbrook::CXMLElement;

constexpr const char16_t* kPatch = u"Patch";
constexpr const char16_t* kDeviceID = u"deviceID";
constexpr const char16_t* kSamples = u"Samples";
constexpr const char16_t* kSampleReference = u"SampleReference";

/// Levels below the root at which a "SampleReference" stands.
constexpr std::size_t kReferenceDepth = 2;

std::string ReadText(const NSBigFilePackage::IMedia& media, std::uint64_t length) {
  if (length > kGreatestVorlinkPatch) {
    throw XFormatViolation("the Vorlink patch has " + std::to_string(length) + " bytes; at most " +
                           std::to_string(kGreatestVorlinkPatch) + " can be read");
  }
  std::string text(static_cast<std::size_t>(length), '\0');
  NSBigFilePackage::ReadExactly(
      media, 0, std::span(reinterpret_cast<std::uint8_t*>(text.data()), text.size()));
  return text;
}

}  // namespace

std::u16string VorlinkDeviceIdentifier(std::string_view head) {
  const std::shared_ptr<CXMLElement> root = NSTolbrook::ReadXMLRootTag(head);
  if (root == nullptr || root->Name() != kPatch) return {};
  const std::u16string* identifier = root->FindAttribute(kDeviceID);
  return identifier == nullptr ? std::u16string() : *identifier;
}

std::u16string ReadVorlinkDeviceIdentifier(const NSBigFilePackage::IMedia& media) {
  const std::uint64_t length = std::min<std::uint64_t>(media.Size(), kVorlinkHeadLength);
  std::u16string identifier = VorlinkDeviceIdentifier(ReadText(media, length));
  if (identifier.empty()) {
    throw XFormatViolation("missing device identifier in Vorlink patch");
  }
  return identifier;
}

CVorlinkPatch::CVorlinkPatch(const NSBigFilePackage::IMedia& media, const std::string& name)
    : CVorlinkPatch(ReadText(media, media.Size()), name) {}

CVorlinkPatch::CVorlinkPatch(std::string text, const std::string& name) : fText(std::move(text)) {
  ReadReferences(name);
}

void CVorlinkPatch::ReadReferences(const std::string& name) {
  const auto root = NSTolbrook::LoadXMLDocument(fText, "Vorlink patch", name);
  if (root->Name() != kPatch) {
    throw XFormatViolation("the root element of a Vorlink patch must be \"Patch\"");
  }
  for (const auto& samples : root->ChildList()) {
    if (samples->Name() != kSamples) continue;
    for (const auto& element : samples->ChildList()) {
      if (element->Name() != kSampleReference) continue;
      fReferences.push_back(CSampleReference::Parse(*element));
      fRanges.push_back(element->SourceRange());
    }
  }
}

std::string CVorlinkPatch::Rewritten(std::span<const CSampleReference> replacements) const {
  if (replacements.size() != fReferences.size()) {
    throw NSMordel::XIllegalCallSequence("each reference of a patch needs its replacement");
  }
  std::string output;
  std::size_t position = 0;
  for (std::size_t i = 0; i < fRanges.size(); ++i) {
    const CSampleReference& reference = replacements[i];
    const auto element = reference.Write(TypeOfKind(KindOfReference(reference)));
    output.append(fText, position, fRanges[i].fBegin - position);
    output += NSTolbrook::WriteXMLFragment(*element, kReferenceDepth);
    position = fRanges[i].fEnd;
  }
  return output.append(fText, position);
}

}  // namespace NSTambraPacking
