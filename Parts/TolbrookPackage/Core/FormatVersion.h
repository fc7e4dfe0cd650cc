#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTolbrook {

/// The version of a file structure. Versions compare field by field in this order.
struct CFormatVersion {
  static constexpr std::uint32_t kFinalStage = 4;

  std::uint32_t fMajor = 1;
  std::uint32_t fMinor = 0;
  std::uint32_t fBugFix = 0;
  /// 1 development, 2 alpha, 3 beta, 4 final.
  std::uint32_t fStage = kFinalStage;
  std::uint32_t fBuild = 0;
  std::uint32_t fFurther = 0;

  friend auto operator<=>(const CFormatVersion&, const CFormatVersion&) = default;

  /// "major.minor.bugfix", with the stage letter and build behind it when not final build 0.
  std::string Text() const;
};

inline constexpr std::size_t kCompactVersionLength = 5;
inline constexpr std::size_t kExtendedVersionLength = 29;

/// The bytes that WriteFormatVersion writes: 5 or 29.
std::size_t FormatVersionLength(const CFormatVersion& version);

/// Writes the shortest form that holds `version` in one write; the position moves on behind it.
void WriteFormatVersion(NSBigFilePackage::CMediaCursor& output, const CFormatVersion& version);

/// Reads either form; the position moves on behind it. Throws XFormatViolation when bytes are
/// missing, the marker is wrong or the stage is not 1 to 4.
CFormatVersion ReadFormatVersion(NSBigFilePackage::CMediaCursor& input);

}  // namespace NSTolbrook
