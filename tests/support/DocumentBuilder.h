#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "package/MemoryMedia.h"

/// Patches and songs put together byte by byte, without any of the code that reads them.
namespace NSTest {

using Bytes = std::vector<std::uint8_t>;

inline Bytes AsBytes(std::string_view text) { return Bytes(text.begin(), text.end()); }

inline void Append(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

inline Bytes U32(std::uint32_t value) {
  return {static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16),
          static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
}

inline Bytes Joined(std::initializer_list<Bytes> parts) {
  Bytes bytes;
  for (const Bytes& part : parts) Append(bytes, part);
  return bytes;
}

inline Bytes VersionBytes(std::uint8_t major = 1) { return {0xBC, major, 0, 0, 0}; }

/// u32 count and the bytes.
inline Bytes StringBytes(std::string_view text) {
  return Joined({U32(static_cast<std::uint32_t>(text.size())), AsBytes(text)});
}

/// A plain chunk with its pad byte.
inline Bytes Chunk(std::string_view id, const Bytes& body) {
  Bytes bytes = Joined({AsBytes(id), U32(static_cast<std::uint32_t>(body.size())), body});
  if (body.size() % 2 != 0) bytes.push_back(0);
  return bytes;
}

/// A group chunk ("FORM", "LIST", "CAT ") around whole chunks.
inline Bytes Group(std::string_view id, std::string_view type,
                   std::initializer_list<Bytes> chunks) {
  return Chunk(id, Joined({AsBytes(type), Joined(chunks)}));
}

inline Bytes DescriptionBody(std::string_view deviceName) {
  return Joined({VersionBytes(), {1}, StringBytes(deviceName), StringBytes("id")});
}

inline Bytes ReferenceBody(std::uint32_t kind, std::string_view xml) {
  return Joined({VersionBytes(), U32(kind), StringBytes(xml)});
}

/// "REFE" of a sample.
inline Bytes ReferenceChunk(std::string_view xml) { return Chunk("REFE", ReferenceBody(12, xml)); }

/// The document of a sample reference with a relative form alone; `path` begins with "/".
inline std::string ReferenceXML(std::string_view trueName, std::string_view path, int stepUp,
                                std::string_view tambraName = {}) {
  std::string xml = "<SampleReference trueName=\"" + std::string(trueName) + "\">";
  if (!tambraName.empty()) xml += "<Tambra name=\"" + std::string(tambraName) + "\"/>";
  return xml + "<RelativePath><Path>" + std::string(path) + "</Path><StepUp>" +
         std::to_string(stepUp) + "</StepUp></RelativePath></SampleReference>";
}

inline std::shared_ptr<NSBigFilePackage::CMemoryMedia> AsMedia(Bytes bytes) {
  return std::make_shared<NSBigFilePackage::CMemoryMedia>(std::move(bytes));
}

}  // namespace NSTest
