#pragma once

#include <cstdint>
#include <span>

namespace NSTambraPacking {

/// The zip file of all text tables, bundled when the program was built. Its members are named by
/// kind and number: "SSTR/128.txt".
std::span<const std::uint8_t> ResourceBundle();

}  // namespace NSTambraPacking
