#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTest {

/// A medium in front of another one that breaks after a number of bytes (the read or write that
/// would pass the budget is not done and throws XRead or XWrite) or at a certain operation.
class CFailingMedia : public NSBigFilePackage::IMedia {
 public:
  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

  explicit CFailingMedia(NSBigFilePackage::SharedMedia media, std::uint64_t readBudget = kNever,
                         std::uint64_t writeBudget = kNever)
      : fMedia(std::move(media)), fReadBudget(readBudget), fWriteBudget(writeBudget) {}

  /// Lets the operation that `count` others come before throw an XFailure, and with `forever` all
  /// behind it. Operations are reads, writes, resizes and flushes. A write that fails has written
  /// its first half.
  template <class XFailure>
  void FailAfter(std::uint64_t count, bool forever) {
    fUntilFailure = count;
    fForever = forever;
    fRaise = [] { throw XFailure("the medium failed"); };
  }
  void StopFailing() { fRaise = nullptr; }
  /// Whether the operation named by FailAfter was reached.
  bool HasFailed() const { return fFailed; }

  std::uint64_t Size() const override { return fMedia->Size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    if (destination.size() > fReadBudget) throw NSMordel::XRead("the medium broke");
    fReadBudget -= destination.size();
    if (FailsNow()) fRaise();
    return fMedia->Read(position, destination);
  }
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override {
    if (source.size() > fWriteBudget) throw NSMordel::XWrite("the medium broke");
    fWriteBudget -= source.size();
    if (FailsNow()) {
      fMedia->Write(position, source.first(source.size() / 2));
      fRaise();
    }
    fMedia->Write(position, source);
  }
  void SetSize(std::uint64_t size) override {
    if (FailsNow()) fRaise();
    fMedia->SetSize(size);
  }
  void Flush() override {
    if (FailsNow()) fRaise();
    fMedia->Flush();
  }

  void SetReadBudget(std::uint64_t bytes) { fReadBudget = bytes; }

 private:
  bool FailsNow() const {
    if (!fRaise) return false;
    if (fUntilFailure > 0) {
      --fUntilFailure;
      return false;
    }
    if (fFailed && !fForever) return false;
    fFailed = true;
    return true;
  }

  NSBigFilePackage::SharedMedia fMedia;
  mutable std::uint64_t fReadBudget;
  std::uint64_t fWriteBudget;
  std::function<void()> fRaise;
  bool fForever = false;
  mutable std::uint64_t fUntilFailure = 0;
  mutable bool fFailed = false;
};

}  // namespace NSTest
