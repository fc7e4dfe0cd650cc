#pragma once

#include <functional>
#include <random>
#include <vector>

#include "package/MemoryMedia.h"

namespace NSTest {

/// A medium in memory that remembers every write, resize and flush, and shows what disks could hold
/// after a crash at any time.
class CCrashingDisk : public NSBigFilePackage::IMedia {
 public:
  using Bytes = std::vector<std::uint8_t>;

  /// What a disk does with that which was not flushed before the crash.
  enum class EModel {
    kOrdered,    ///< it keeps the first operations, and a part of the next one
    kReordered,  ///< it keeps any of them
    kTorn,       ///< it keeps any of them, and any bytes of some
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

  std::size_t Operations() const { return fOperations.size(); }

  /// Calls `check` with images of a crash behind each operation and before the first: those with
  /// all and nothing of the unflushed kept, and `samples` of each model.
  using Check = std::function<void(const Bytes& image, std::size_t operations)>;
  void ForEachImage(std::size_t samples, std::mt19937& random, const Check& check) const;

 private:
  enum class EKind { kWrite, kResize, kFlush };
  struct COperation {
    EKind fKind;
    std::uint64_t fPosition;  // or the new size
    Bytes fBytes;
  };
  using Unflushed = std::span<const COperation>;

  static void Apply(const COperation& operation, Bytes& image);
  static void ApplyPart(const COperation& operation, Bytes& image, std::mt19937& random);
  static Bytes ImageOf(Bytes flushed, Unflushed unflushed, EModel model, std::mt19937& random);

  NSBigFilePackage::CMemoryMedia fMedia;
  std::vector<COperation> fOperations;
};

}  // namespace NSTest
