#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace NSTolbrook {

/// The longest path and the longest component that every system takes, in bytes of UTF-8.
inline constexpr std::size_t kGreatestPortablePath = 1023;
inline constexpr std::size_t kGreatestPortableName = 255;

/// Why `path`, its components joined with "/", is not a plain relative path on every system, as the
/// end of a sentence that begins with the path; empty when it is one. A plain path leads downwards
/// through names that every system stores as they stand and takes for nothing else: not "." and
/// "..", no drives, streams and devices, no characters that are reserved, invisible or turn the
/// direction of writing.
std::string FaultOfPortablePath(std::u16string_view path);

/// Throws XFormatViolation when a path is not plain, or when two cannot stand side by side
/// everywhere: because they differ only in case or normalisation, or one is the other's folder. The
/// message shows the path by EscapedText.
void CheckPortablePaths(const std::vector<std::u16string>& paths);

/// UTF-8 of `text` with "\uXXXX" for every code unit of a character that is reserved for control or
/// cannot be seen.
std::string EscapedText(std::u16string_view text);

}  // namespace NSTolbrook
