#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Parts/TolbrookPackage/Core/FormatVersion.h"
#include "Parts/TolbrookPackage/Core/Media.h"

/// The parts that the header and the index of a package file share. All integers are big-endian.
/// docs/formats/package.md shows a whole package in hex.
namespace NSTambraPacking {

/// The newest package version that hosts can open, and so the newest one that is read and written.
inline constexpr NSTolbrook::CFormatVersion kSupportedPackageVersion{1, 2, 0};

/// The greatest count, offset or size that a package can hold: its fields have 32 bits.
inline constexpr std::uint64_t kPackageLimit = 0xFFFFFFFF;

/// The greatest text field that is written and read, in bytes; far more than any package needs. A
/// file with holes may seem to hold gigabytes of text.
inline constexpr std::uint32_t kGreatestTextField = std::uint32_t{16} << 20;

/// The entries of a package may share bytes; so many times the data region's length is the most
/// that they may have together.
inline constexpr std::uint64_t kGreatestSharing = 16;

/// Bytes of buffer with which a package is read from its start.
inline constexpr std::size_t kPackageBufferLength = 16384;

/// Context key of the failure that a package would not fit; the limit stands under
/// secondary_object_id.
inline constexpr const char* kPackageSizeKey = "tambrasize";

/// `value` in 32 bits. Throws XOutOfSpace with the value and the limit, in the message and as
/// kPackageSizeKey, when it is beyond kPackageLimit; `what` names it ("the package's data").
std::uint32_t FitPackageLimit(std::uint64_t value, const char* what);

/// Throws XVersionTooNew when `version` is later than kSupportedPackageVersion. The sixth part of a
/// version takes no part in the comparison.
void CheckPackageVersion(const NSTolbrook::CFormatVersion& version);

/// The bytes of a text field behind its count: Windows-1252 when every character has a byte and
/// the result does not begin with the mark EF BB BF, else that mark and UTF-8. Throws
/// XFormatViolation for a surrogate without its partner.
std::string EncodePackageText(std::u16string_view text);

/// The inverse. Throws XFormatViolation when the bytes behind the mark are not valid UTF-8.
std::u16string DecodePackageText(std::string_view bytes);

/// Writes a text field: a u32 byte count and the encoded text, no terminator. Throws as
/// EncodePackageText, and XFormatViolation for a text of more than `greatest` bytes.
void WriteTextField(NSBigFilePackage::CMediaCursor& output, std::u16string_view text,
                    std::uint32_t greatest = kGreatestTextField);

/// Reads a text field. Throws XFormatViolation when the media ends before the field does or it has
/// more than `greatest` bytes (both asked before memory is taken), and as DecodePackageText.
std::u16string ReadTextField(NSBigFilePackage::CMediaCursor& input,
                             std::uint32_t greatest = kGreatestTextField);

void WriteU32(NSBigFilePackage::CMediaCursor& output, std::uint32_t value);

/// Throws XFormatViolation when fewer than four bytes remain.
std::uint32_t ReadU32(NSBigFilePackage::CMediaCursor& input);

}  // namespace NSTambraPacking
