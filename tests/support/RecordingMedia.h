#pragma once

#include <random>
#include <vector>

#include "package/MemoryMedia.h"

namespace NSTest {

/// A medium in memory that remembers every write, resize and flush, and shows what a disk could
/// hold after a crash at any time.
class CRecordingMedia : public NSBigFilePackage::IMedia {
 public:
  /// What becomes of that which was not flushed before the crash.
  enum class EUnflushed {
    kKept,
    kDropped,
    kMixed,  ///< each operation is kept, dropped, or (a write) torn: some of its bytes are missing
  };

  std::uint64_t Size() const override { return fMedia.Size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    return fMedia.Read(position, destination);
  }
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override {
    fMedia.Write(position, source);
    fOperations.push_back({EKind::kWrite, position, {source.begin(), source.end()}});
  }
  void SetSize(std::uint64_t size) override {
    fMedia.SetSize(size);
    fOperations.push_back({EKind::kResize, size, {}});
  }
  void Flush() override { fOperations.push_back({EKind::kFlush, 0, {}}); }

  /// The number of operations so far.
  std::size_t Operations() const { return fOperations.size(); }

  /// What the disk holds when it stops after the first `operations`.
  NSBigFilePackage::SharedMedia Image(std::size_t operations, EUnflushed unflushed,
                                      std::uint32_t seed = 0) const {
    auto image = std::make_shared<NSBigFilePackage::CMemoryMedia>();
    std::size_t flushed = operations;
    while (flushed > 0 && fOperations[flushed - 1].fKind != EKind::kFlush) --flushed;
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < operations; ++i) {
      const COperation& operation = fOperations[i];
      const auto fate = i < flushed || unflushed == EUnflushed::kKept ? kKeep
                        : unflushed == EUnflushed::kDropped           ? kDrop
                                                                      : random() % kFateCount;
      if (fate == kKeep) Apply(operation, *image);
      if (fate == kTear && operation.fKind == EKind::kWrite) Tear(operation, *image, random);
    }
    return image;
  }

 private:
  enum class EKind { kWrite, kResize, kFlush };
  enum EFate : std::uint_fast32_t { kKeep, kDrop, kTear, kFateCount };
  struct COperation {
    EKind fKind;
    std::uint64_t fPosition;  // or the new size
    std::vector<std::uint8_t> fBytes;
  };

  static void Apply(const COperation& operation, NSBigFilePackage::IMedia& image) {
    if (operation.fKind == EKind::kWrite) image.Write(operation.fPosition, operation.fBytes);
    if (operation.fKind == EKind::kResize) image.SetSize(operation.fPosition);
  }

  /// Writes either the first bytes, or each byte or not.
  static void Tear(const COperation& operation, NSBigFilePackage::IMedia& image,
                   std::mt19937& random) {
    const std::span<const std::uint8_t> bytes(operation.fBytes);
    if (random() % 2 == 0) {
      image.Write(operation.fPosition, bytes.first(random() % (bytes.size() + 1)));
      return;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (random() % 2 == 0) image.Write(operation.fPosition + i, bytes.subspan(i, 1));
    }
  }

  NSBigFilePackage::CMemoryMedia fMedia;
  std::vector<COperation> fOperations;
};

}  // namespace NSTest
