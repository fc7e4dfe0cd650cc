#include "package/BlockAllocator.h"

namespace NSBigFilePackage {

std::optional<std::uint64_t> CBlockAllocator::TakeFree(std::uint64_t blockCount) {
  if (!fReleased.empty()) {
    const std::uint64_t block = fReleased.back();
    Take(block);
    fReleased.pop_back();
    return block;
  }
  while (fNext < blockCount && fUsed.contains(fNext)) ++fNext;
  if (fNext >= blockCount) return std::nullopt;
  Take(fNext);
  return fNext++;
}

void CBlockAllocator::Release(std::uint64_t block) {
  const auto found = fUsed.find(block);
  if (found == fUsed.end() || found->second) return;
  if (block < fNext) fReleased.push_back(block);
  fUsed.erase(found);
}

bool CBlockAllocator::IsFrozen(std::uint64_t block) const {
  const auto found = fUsed.find(block);
  return found != fUsed.end() && found->second;
}

void CBlockAllocator::Freeze(std::span<const std::uint64_t> blocks) {
  for (const std::uint64_t block : blocks) fUsed[block] = true;
}

}  // namespace NSBigFilePackage
