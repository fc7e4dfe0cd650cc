#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace NSTest {

/// Which optional structures a built shortcut holds.
struct CShortcutForm {
  bool fUnicode = true;     ///< of the counted texts and the link information
  bool fTargetList = true;  ///< some bytes where the target identifiers stand
  bool fName = true;        ///< a description before the relative path
};

/// The bytes of a Windows shortcut file. An empty path is left out. Without Unicode only Latin-1
/// characters can be stored.
inline std::vector<std::uint8_t> MakeShortcut(std::u16string_view relativePath,
                                              std::u16string_view localBasePath,
                                              CShortcutForm form = {}) {
  std::vector<std::uint8_t> bytes;
  const auto number = [&bytes](std::size_t value, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  };
  const auto text = [&](std::u16string_view characters, bool wide) {
    for (const char16_t unit : characters) number(unit, wide ? 2 : 1);
  };
  const std::size_t flags = (form.fTargetList ? 1U : 0U) | (localBasePath.empty() ? 0U : 2U) |
                            (form.fName ? 4U : 0U) | (relativePath.empty() ? 0U : 8U) |
                            (form.fUnicode ? 0x80U : 0U);
  number(76, 4);
  for (const int byte : {1, 0x14, 2, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46}) {
    number(static_cast<std::size_t>(byte), 1);
  }
  number(flags, 4);
  bytes.resize(76);
  if (form.fTargetList) {
    number(6, 2);
    for (const std::size_t item : {4U, 0xABCDU, 0U}) number(item, 2);
  }
  if (!localBasePath.empty()) {
    // An 8-bit text where Unicode is missing, else a wrong one that the reader must pass over.
    const std::u16string_view narrow = form.fUnicode ? u"C:\\?" : localBasePath;
    const std::size_t header = form.fUnicode ? 0x24 : 0x1C;
    const std::size_t suffix = header + narrow.size() + 1;
    const std::size_t wide = suffix + 1;
    const std::size_t wideSuffix = wide + 2 * (localBasePath.size() + 1);
    number(form.fUnicode ? wideSuffix + 2 : wide, 4);
    for (const std::size_t field :
         {header, std::size_t{1}, std::size_t{0}, header, std::size_t{0}, suffix}) {
      number(field, 4);
    }
    if (form.fUnicode) {
      number(wide, 4);
      number(wideSuffix, 4);
    }
    text(narrow, false);
    number(0, 2);  // the end of the path, and an empty suffix
    if (form.fUnicode) {
      text(localBasePath, true);
      number(0, 4);
    }
  }
  const auto counted = [&](std::u16string_view characters) {
    number(characters.size(), 2);
    text(characters, form.fUnicode);
  };
  if (form.fName) counted(u"A description");
  if (!relativePath.empty()) counted(relativePath);
  number(0, 4);  // no extra data
  return bytes;
}

}  // namespace NSTest
