#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "app/TextResources.h"

namespace NSTambraPacking {

/// A stretch of a file and what it means.
struct CDumpField {
  /// 0 for a part of the file; its fields have 1, those of a part inside it 2.
  int fDepth = 0;
  std::uint64_t fOffset = 0;  ///< bytes from the file's start
  std::uint64_t fSize = 0;    ///< bytes
  /// As docs/formats names it.
  std::string fName;
  std::u16string fValue;
  /// The first bytes, at most kDumpedBytes; none of a part.
  std::vector<std::uint8_t> fBytes;
};

inline constexpr std::size_t kDumpedBytes = 16;

using CDumpReport = std::function<void(const CDumpField&)>;

enum class EDumpedFile { kPackage, kDWOPStream, kBlockStore };

/// What the file is, judged by its first bytes: a block store has a signature, a stream a header
/// that reads without fault; everything else is taken for a package.
EDumpedFile KindOfFile(const NSBigFilePackage::SharedMedia& file);

/// Hands over each field of the file's structure, as far as it can be read. A sample's stream that
/// is damaged gets a part "fault"; anything else that is wrong throws, as the readers of the format
/// do, behind the fields before it. `checkStop` is called often and may throw.
void DumpFile(const NSBigFilePackage::SharedMedia& file, EDumpedFile kind,
              const CTextResources& texts, const CDumpReport& report,
              const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
