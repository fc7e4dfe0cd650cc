#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/MemoryMedia.h"

/// The entry point of a fuzz target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace NSFuzz {

/// The bytes of one run.
class CFuzzInput {
 public:
  CFuzzInput(const std::uint8_t* data, std::size_t size) : fBytes(data, size) {}

  std::vector<std::uint8_t> Bytes() const { return {fBytes.begin(), fBytes.end()}; }
  std::string_view Text() const {
    return {reinterpret_cast<const char*>(fBytes.data()), fBytes.size()};
  }
  NSBigFilePackage::SharedMedia Media() const {
    return std::make_shared<NSBigFilePackage::CMemoryMedia>(Bytes());
  }

 private:
  std::span<const std::uint8_t> fBytes;
};

/// Runs `parse`. To refuse input by an exception of the program's own family is fine, as long as it
/// does not speak of a fault of the program; every other exception leaves, which the fuzzer takes
/// for a crash.
template <class Parse>
int Try(const Parse& parse) {
  try {
    parse();
  } catch (const NSMordel::CExceptionBodyMixin& e) {
    const bool isOwnFault = dynamic_cast<const std::logic_error*>(&e) != nullptr ||
                            dynamic_cast<const std::bad_alloc*>(&e) != nullptr;
    if (isOwnFault) throw;
  }
  return 0;
}

/// Ends the run as a finding.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace NSFuzz
