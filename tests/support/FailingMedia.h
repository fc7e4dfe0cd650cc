#pragma once

#include <cstdint>
#include <limits>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTest {

/// A medium in front of another one that breaks after a number of bytes: the read or write that
/// would pass the budget is not done and throws XRead or XWrite.
class CFailingMedia : public NSBigFilePackage::IMedia {
 public:
  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

  explicit CFailingMedia(NSBigFilePackage::SharedMedia media, std::uint64_t readBudget = kNever,
                         std::uint64_t writeBudget = kNever)
      : fMedia(std::move(media)), fReadBudget(readBudget), fWriteBudget(writeBudget) {}

  std::uint64_t Size() const override { return fMedia->Size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    if (destination.size() > fReadBudget) throw NSMordel::XRead("the medium broke");
    fReadBudget -= destination.size();
    return fMedia->Read(position, destination);
  }
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override {
    if (source.size() > fWriteBudget) throw NSMordel::XWrite("the medium broke");
    fWriteBudget -= source.size();
    fMedia->Write(position, source);
  }
  void SetSize(std::uint64_t size) override { fMedia->SetSize(size); }
  void Flush() override { fMedia->Flush(); }

  void SetReadBudget(std::uint64_t bytes) { fReadBudget = bytes; }

 private:
  NSBigFilePackage::SharedMedia fMedia;
  mutable std::uint64_t fReadBudget;
  std::uint64_t fWriteBudget;
};

}  // namespace NSTest
