#include "Parts/TolbrookPackage/Core/Shortcut.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/CheckedBytes.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTolbrook {

namespace {

using Bytes = std::span<const std::uint8_t>;
using NSMordel::XFormatViolation;

constexpr std::uint64_t kGreatestShortcut = 1024 * 1024;
constexpr std::uint32_t kHeaderSize = 76;
constexpr std::array<std::uint8_t, 16> kClassIdentifier = {1,    0x14, 2, 0, 0, 0, 0, 0,
                                                           0xC0, 0,    0, 0, 0, 0, 0, 0x46};
constexpr std::uint64_t kFlagsOffset = 20;

enum ELinkFlags : std::uint32_t {
  kHasTargetList = 1U << 0,
  kHasLinkInfo = 1U << 1,
  kHasName = 1U << 2,
  kHasRelativePath = 1U << 3,
  kIsUnicode = 1U << 7,
  kIgnoreLinkInfo = 1U << 8
};

constexpr std::uint32_t kLeastLinkInfoHeader = 0x1C;
constexpr std::uint32_t kUnicodeLinkInfoHeader = 0x24;
constexpr std::uint32_t kHasLocalBasePath = 1;

std::string_view Characters(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::u16string TerminatedText(const CCheckedBytes& data, std::uint32_t offset) {
  const std::string_view rest = Characters(data.From(offset));
  const std::size_t end = rest.find('\0');
  if (end == std::string_view::npos) throw XFormatViolation("a shortcut's text has no end");
  return TextFromWindows1252(rest.substr(0, end));
}

std::u16string TerminatedUnicodeText(const CCheckedBytes& data, std::uint64_t offset) {
  std::uint64_t end = offset;
  while (data.Integer<std::uint16_t>(end) != 0) end += 2;
  return TextFromUtf16LittleEndian(Characters(data.Part(offset, end - offset)));
}

/// The local base path with the suffix that stands behind it; empty when there is none.
std::u16string ParseLinkInfo(Bytes bytes) {
  const CCheckedBytes info(bytes, "a shortcut's link information");
  const auto headerSize = info.Integer<std::uint32_t>(4);
  if (headerSize < kLeastLinkInfoHeader) {
    throw XFormatViolation("a shortcut's link information has too short a header");
  }
  if ((info.Integer<std::uint32_t>(8) & kHasLocalBasePath) == 0) return {};
  std::u16string path = TerminatedText(info, info.Integer<std::uint32_t>(16));
  std::u16string suffix = TerminatedText(info, info.Integer<std::uint32_t>(24));
  if (headerSize >= kUnicodeLinkInfoHeader) {
    if (const auto offset = info.Integer<std::uint32_t>(28)) {
      path = TerminatedUnicodeText(info, offset);
    }
    if (const auto offset = info.Integer<std::uint32_t>(32)) {
      suffix = TerminatedUnicodeText(info, offset);
    }
  }
  if (!path.empty() && !suffix.empty() && path.back() != u'\\') path += u'\\';
  return path + suffix;
}

/// A counted text at `offset`, which moves on behind it.
std::u16string TakeString(const CCheckedBytes& file, std::uint64_t& offset, bool unicode) {
  const std::uint64_t count = file.Integer<std::uint16_t>(offset);
  const std::string_view bytes = Characters(file.Part(offset + 2, unicode ? 2 * count : count));
  offset += 2 + bytes.size();
  return unicode ? TextFromUtf16LittleEndian(bytes) : TextFromWindows1252(bytes);
}

}  // namespace

CShortcut CShortcut::Parse(const NSBigFilePackage::IMedia& media) {
  const std::uint64_t size = media.Size();
  if (size > kGreatestShortcut) throw XFormatViolation("a shortcut of more than a megabyte");
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  NSBigFilePackage::ReadExactly(media, 0, bytes);

  const CCheckedBytes file(bytes, "the shortcut");
  if (file.Integer<std::uint32_t>(0) != kHeaderSize ||
      !std::ranges::equal(file.Part(4, kClassIdentifier.size()), kClassIdentifier)) {
    throw XFormatViolation("the file is no shortcut");
  }
  const auto flags = file.Integer<std::uint32_t>(kFlagsOffset);
  CShortcut shortcut;
  std::uint64_t offset = file.Part(0, kHeaderSize).size();
  if ((flags & kHasTargetList) != 0) offset += 2U + file.Integer<std::uint16_t>(offset);
  if ((flags & kHasLinkInfo) != 0) {
    const Bytes info = file.Part(offset, file.Integer<std::uint32_t>(offset));
    if ((flags & kIgnoreLinkInfo) == 0) shortcut.fLocalBasePath = ParseLinkInfo(info);
    offset += info.size();
  }
  const bool unicode = (flags & kIsUnicode) != 0;
  if ((flags & kHasName) != 0) TakeString(file, offset, unicode);
  if ((flags & kHasRelativePath) != 0) {
    shortcut.fRelativePath = TakeString(file, offset, unicode);
  }
  file.From(offset);  // the target list, too, must lie inside the file
  return shortcut;
}

}  // namespace NSTolbrook
