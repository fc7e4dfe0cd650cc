#pragma once

#include <gtest/gtest.h>
#include <map>
#include <random>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/StdException.h"

#include "package/BlockStore.h"
#include "package/MemoryMedia.h"

namespace NSBigFilePackage {

using Bytes = std::vector<std::uint8_t>;
using NSMordel::NSMordelDetails::XStdInvalidArgument;
using Contents = std::map<std::uint32_t, Bytes>;  ///< the bytes of all streams

constexpr std::uint32_t kSmallBlock = 64;

inline Bytes RandomBytes(std::size_t count, std::uint32_t seed) {
  std::mt19937 random(seed);
  Bytes bytes(count);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

inline Bytes ReadAll(const IMedia& media) {
  Bytes bytes(static_cast<std::size_t>(media.Size()));
  ReadExactly(media, 0, bytes);
  return bytes;
}

inline Contents ReadStreams(CBlockStore& store) {
  Contents contents;
  for (const auto identifier : store.Streams()) {
    contents[identifier] = ReadAll(*store.OpenStream(identifier));
  }
  return contents;
}

template <std::unsigned_integral T>
void Put(Bytes& bytes, T value) {
  bytes.resize(bytes.size() + sizeof(T));
  NSTolbrook::StoreBigEndian(std::span(bytes).last(sizeof(T)), value);
}

}  // namespace NSBigFilePackage
