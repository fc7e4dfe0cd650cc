#include "package/PackageFormat.h"

#include <array>
#include <optional>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSMordel::XFormatViolation;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// Throws when fewer than `count` bytes remain.
void RequireBytes(const CMediaCursor& input, std::uint64_t count) {
  const std::uint64_t remaining = input.Remaining();
  if (count <= remaining) return;
  throw XFormatViolation("a field at offset " + std::to_string(input.Position()) +
                         " of the package needs " + std::to_string(count) + " bytes, but only " +
                         std::to_string(remaining) + " are left");
}

void CheckTextLength(std::uint64_t count, std::uint32_t greatest) {
  if (count <= greatest) return;
  throw XFormatViolation("a text of the package has " + std::to_string(count) + " bytes; at most " +
                         std::to_string(greatest) + " are allowed");
}

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

std::uint32_t FitPackageLimit(std::uint64_t value, const char* what) {
  if (value <= kPackageLimit) return static_cast<std::uint32_t>(value);
  throw NSMordel::XOutOfSpace(std::string(what) + " would reach " + std::to_string(value) +
                                  ", but a package can hold no more than " +
                                  std::to_string(kPackageLimit),
                              {{kPackageSizeKey, std::to_string(value)},
                               {NSMordel::kSecondaryObjectId, std::to_string(kPackageLimit)}});
}

void CheckPackageVersion(const NSTolbrook::CFormatVersion& version) {
  NSTolbrook::CFormatVersion compared = version;
  compared.fFurther = kSupportedPackageVersion.fFurther;
  if (compared <= kSupportedPackageVersion) return;
  throw NSMordel::XVersionTooNew("the package has version " + version.Text() +
                                 ", the newest supported version is " +
                                 kSupportedPackageVersion.Text());
}

std::string EncodePackageText(std::u16string_view text) {
  std::optional<std::string> bytes = NSTolbrook::Windows1252FromText(text);
  if (bytes && !bytes->starts_with(kUtf8Mark)) return *std::move(bytes);
  return std::string(kUtf8Mark) + NSTolbrook::StrictUtf8FromText(text);
}

std::u16string DecodePackageText(std::string_view bytes) {
  if (!bytes.starts_with(kUtf8Mark)) return NSTolbrook::TextFromWindows1252(bytes);
  std::optional<std::u16string> text =
      NSTolbrook::StrictTextFromUtf8(bytes.substr(kUtf8Mark.size()));
  if (!text) throw XFormatViolation("a text of the package is marked as UTF-8 but is not");
  return *std::move(text);
}

void WriteTextField(CMediaCursor& output, std::u16string_view text, std::uint32_t greatest) {
  const std::string bytes = EncodePackageText(text);
  CheckTextLength(bytes.size(), greatest);
  WriteU32(output, static_cast<std::uint32_t>(bytes.size()));
  output.Write(BytesOf(bytes));
}

std::u16string ReadTextField(CMediaCursor& input, std::uint32_t greatest) {
  const std::uint32_t count = ReadU32(input);
  RequireBytes(input, count);
  CheckTextLength(count, greatest);
  std::string bytes(count, '\0');
  input.ReadExactly({reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()});
  return DecodePackageText(bytes);
}

void WriteU32(CMediaCursor& output, std::uint32_t value) {
  std::array<std::uint8_t, sizeof(value)> bytes{};
  NSTolbrook::StoreBigEndian(std::span(bytes), value);
  output.Write(bytes);
}

std::uint32_t ReadU32(CMediaCursor& input) {
  std::array<std::uint8_t, sizeof(std::uint32_t)> bytes{};
  RequireBytes(input, bytes.size());
  input.ReadExactly(bytes);
  return NSTolbrook::LoadBigEndian<std::uint32_t>(bytes);
}

}  // namespace NSTambraPacking
