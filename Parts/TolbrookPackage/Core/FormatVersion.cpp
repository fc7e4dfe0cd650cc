#include "Parts/TolbrookPackage/Core/FormatVersion.h"

#include <algorithm>
#include <array>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTolbrook {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSMordel::XFormatViolation;

constexpr std::uint8_t kMarker = 0xBC;
constexpr std::uint8_t kExtendedMark = 0xFF;
constexpr std::uint32_t kGreatestCompactPart = 254;

bool FitsCompactForm(const CFormatVersion& version) {
  return version.fStage == CFormatVersion::kFinalStage && version.fBuild == 0 &&
         version.fFurther == 0 &&
         std::max({version.fMajor, version.fMinor, version.fBugFix}) <= kGreatestCompactPart;
}

void ReadPart(CMediaCursor& input, std::span<std::uint8_t> bytes) {
  if (input.Remaining() < bytes.size()) throw XFormatViolation("a format version is cut short");
  input.ReadExactly(bytes);
}

}  // namespace

std::string CFormatVersion::Text() const {
  std::string text =
      std::to_string(fMajor) + "." + std::to_string(fMinor) + "." + std::to_string(fBugFix);
  if (fStage == kFinalStage && fBuild == 0) return text;
  constexpr const char kLetters[] = "?dabf";
  text += kLetters[fStage <= kFinalStage ? fStage : 0];
  return text + std::to_string(fBuild);
}

std::size_t FormatVersionLength(const CFormatVersion& version) {
  return FitsCompactForm(version) ? kCompactVersionLength : kExtendedVersionLength;
}

void WriteFormatVersion(CMediaCursor& output, const CFormatVersion& version) {
  std::array<std::uint8_t, kExtendedVersionLength> bytes{};
  bytes[0] = kMarker;
  if (FitsCompactForm(version)) {
    bytes[1] = static_cast<std::uint8_t>(version.fMajor);
    bytes[2] = static_cast<std::uint8_t>(version.fMinor);
    bytes[3] = static_cast<std::uint8_t>(version.fBugFix);
    output.Write(std::span(bytes).first(kCompactVersionLength));
    return;
  }
  std::fill_n(bytes.begin() + 1, 4, kExtendedMark);
  std::size_t offset = kCompactVersionLength;
  for (const std::uint32_t part : {version.fMajor, version.fMinor, version.fBugFix, version.fStage,
                                   version.fBuild, version.fFurther}) {
    StoreBigEndian(std::span(bytes).subspan(offset), part);
    offset += sizeof(part);
  }
  output.Write(bytes);
}

CFormatVersion ReadFormatVersion(CMediaCursor& input) {
  std::array<std::uint8_t, kCompactVersionLength> head{};
  ReadPart(input, head);
  if (head[0] != kMarker) throw XFormatViolation("a format version does not begin with its marker");
  const bool extended = std::all_of(head.begin() + 1, head.end(),
                                    [](std::uint8_t byte) { return byte == kExtendedMark; });
  CFormatVersion version;
  if (!extended) {
    version.fMajor = head[1];
    version.fMinor = head[2];
    version.fBugFix = head[3];
    return version;
  }
  std::array<std::uint8_t, kExtendedVersionLength - kCompactVersionLength> tail{};
  ReadPart(input, tail);
  std::size_t offset = 0;
  for (std::uint32_t* part : {&version.fMajor, &version.fMinor, &version.fBugFix, &version.fStage,
                              &version.fBuild, &version.fFurther}) {
    *part = LoadBigEndian<std::uint32_t>(std::span(tail).subspan(offset));
    offset += sizeof(*part);
  }
  if (version.fStage < 1 || version.fStage > CFormatVersion::kFinalStage) {
    throw XFormatViolation("a format version has a stage outside 1 to 4");
  }
  return version;
}

}  // namespace NSTolbrook
