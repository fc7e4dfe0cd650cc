#pragma once

#include <cstdint>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"

namespace NSTolbrook {

enum class EChunkKind { kPlain, kForm, kCatalogue, kList };

/// What stands in a chunk's header: ID (4 characters), size (u32 in the file's byte order) and,
/// for a group chunk, its type (4 characters).
struct CChunkInfo {
  EChunkKind fKind = EChunkKind::kPlain;
  /// The ID of a plain chunk, the type of a group chunk.
  FourCharCode fCode = 0;
  /// Of the header's first byte, in bytes from the start of the range that was read.
  std::uint64_t fPosition = 0;
  /// As stored: the bytes behind the size field, the 4 bytes of a group's type among them.
  std::uint32_t fSize = 0;

  bool operator==(const CChunkInfo&) const = default;
};

/// The two forms of chunk files: the order of the size's bytes and the ID of a form.
struct CIFFDialect {
  static constexpr EByteOrder kByteOrder = EByteOrder::kBigEndian;
  static constexpr FourCharCode kFormID = MakeFourCharCode("FORM");
};
struct CRIFFDialect {
  static constexpr EByteOrder kByteOrder = EByteOrder::kLittleEndian;
  static constexpr FourCharCode kFormID = MakeFourCharCode("RIFF");
};

inline constexpr FourCharCode kCatalogueID = MakeFourCharCode("CAT ");
inline constexpr FourCharCode kListID = MakeFourCharCode("LIST");

/// ID and size, and with them the type of a group, in bytes.
inline constexpr std::uint32_t kPlainHeaderLength = 8;
inline constexpr std::uint32_t kGroupTypeLength = 4;
inline constexpr std::uint32_t kGroupHeaderLength = kPlainHeaderLength + kGroupTypeLength;

/// 8 for a plain chunk, 12 for a group; throws XStdLogicError for a value that is no kind.
std::uint32_t HeaderLength(EChunkKind kind);

/// The kind that a chunk of this ID is, when forms have the ID `formID`.
EChunkKind ChunkKindOfID(FourCharCode id, FourCharCode formID);

/// The ID in the header of a group of this kind; throws XStdLogicError for kPlain.
FourCharCode GroupID(EChunkKind kind, FourCharCode formID);

/// Where the data of a chunk ends and the next chunk may stand: at the next even offset.
constexpr std::uint64_t EvenOffset(std::uint64_t offset) { return offset + (offset & 1); }

/// Throws XFormatViolation: "<what> (chunk "ABCD" at offset N)".
[[noreturn]] void ThrowChunkFault(const char* what, FourCharCode id, std::uint64_t offset);

}  // namespace NSTolbrook
