#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace NSBigFilePackage {

/// Knows which blocks of a block store may be given out. A block is free, taken (in use since the
/// last commit) or frozen (part of a state that a crash may bring back: never written again, only
/// copied, until a later commit thaws it).
class CBlockAllocator {
 public:
  /// A free block below `blockCount`, now taken; nothing when the file has to grow.
  std::optional<std::uint64_t> TakeFree(std::uint64_t blockCount);
  void Take(std::uint64_t block) { fUsed.try_emplace(block, false); }
  /// Frees a taken block; a frozen one stays until a commit thaws it.
  void Release(std::uint64_t block);

  bool IsFrozen(std::uint64_t block) const;
  void Freeze(std::span<const std::uint64_t> blocks);

 private:
  std::unordered_map<std::uint64_t, bool> fUsed;  ///< taken or frozen; true: frozen
  std::vector<std::uint64_t> fReleased;           ///< free again, below fNext
  std::uint64_t fNext = 0;                        ///< blocks from here on are free unless in fUsed
};

}  // namespace NSBigFilePackage
