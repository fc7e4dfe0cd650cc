#pragma once

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSBigFilePackage {

class CBlockStore;

/// A media whose bytes are a stream of a block store.
class IStream : public IMedia {
 public:
  /// What names the stream in its store.
  virtual std::uint32_t Identifier() const = 0;
};

/// A stream by its identifier; any number of objects may stand for the same stream. It keeps the
/// store alive. Once the stream is removed every call throws XStdInvalidArgument.
class CStream : public IStream {
 public:
  CStream(std::shared_ptr<CBlockStore> store, std::uint32_t identifier);

  std::uint32_t Identifier() const override { return fIdentifier; }

  std::uint64_t Size() const override;
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  void SetSize(std::uint64_t size) override;
  /// Commits the store, with all its streams: a stream's bytes are worth nothing without the
  /// directory.
  void Flush() override;

 private:
  std::shared_ptr<CBlockStore> fStore;
  std::uint32_t fIdentifier;
};

}  // namespace NSBigFilePackage
