#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace NSTambraPacking {

/// One file of the demo library, as it will be written.
struct CDemoFile {
  /// From the library's folder, components joined with "/".
  std::u16string fPath;
  std::vector<std::uint8_t> fBytes;
};

using DemoFiles = std::vector<CDemoFile>;

/// The names by which the library's parts speak of it and of each other.
inline constexpr const char16_t* kDemoLibraryName = u"Große Demo-Sammlung";
inline constexpr const char16_t* kDemoLibraryURL = u"https://tambra.example/demo";
inline constexpr const char16_t* kDemoBankPath = u"Bänke/Kleine Bank.sf2";
/// The files in this folder are unfinished; "INFO.TXT" leaves it out of the package.
inline constexpr const char16_t* kDemoUnfinishedFolder = u"Work in progress";

}  // namespace NSTambraPacking
