#pragma once

namespace NSTolbrook {

/// The application's display name, for messages.
inline constexpr const char* kApplicationDisplayName = "Tambra Packer";

}  // namespace NSTolbrook
