#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/MemoryMedia.h"

/// The entry point of a fuzz target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace NSFuzz {

/// The bytes of one run: taken as a whole, or from front to back by a target that makes a script of
/// them. Behind their end there are zeros.
class CFuzzInput {
 public:
  CFuzzInput(const std::uint8_t* data, std::size_t size) : fBytes(data, size) {}

  std::span<const std::uint8_t> View() const { return fBytes; }
  std::vector<std::uint8_t> Bytes() const { return {fBytes.begin(), fBytes.end()}; }
  std::string_view Text() const {
    return {reinterpret_cast<const char*>(fBytes.data()), fBytes.size()};
  }
  std::shared_ptr<NSBigFilePackage::CMemoryMedia> Media() const {
    return std::make_shared<NSBigFilePackage::CMemoryMedia>(Bytes());
  }

  bool AtEnd() const { return fBytes.empty(); }
  std::span<const std::uint8_t> Take(std::size_t count) {
    const auto taken = fBytes.first(std::min(count, fBytes.size()));
    fBytes = fBytes.subspan(taken.size());
    return taken;
  }
  std::uint8_t TakeByte() {
    const auto taken = Take(1);
    return taken.empty() ? std::uint8_t{0} : taken.front();
  }
  std::size_t TakeNumber() { return std::size_t{TakeByte()} << 8 | TakeByte(); }

 private:
  std::span<const std::uint8_t> fBytes;
};

/// What `read` returns, or nothing when it refuses its input. To refuse input is to throw an
/// exception of the program's own family that does not speak of a fault of the program; every other
/// exception leaves, which the fuzzer takes for a crash.
template <class Reader>
std::optional<std::invoke_result_t<const Reader&>> Read(const Reader& read) {
  try {
    return read();
  } catch (const NSMordel::CExceptionBodyMixin& e) {
    const bool isOwnFault = dynamic_cast<const std::logic_error*>(&e) != nullptr ||
                            dynamic_cast<const std::bad_alloc*>(&e) != nullptr;
    if (isOwnFault) throw;
    return std::nullopt;
  }
}

/// Runs `parse`, which may refuse its input. Returns what an entry point returns.
template <class Parse>
int Try(const Parse& parse) {
  Read([&] { return parse(), 0; });
  return 0;
}

/// Ends the run as a finding.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace NSFuzz
