#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "package/MemoryMedia.h"

namespace NSTest {

/// Makes a tiny valid SoundFont bank (one preset, one instrument, one looped sample of 64 words)
/// whose chunks can be changed before it is put together.
class CSoundFontBuilder {
 public:
  using Bytes = std::vector<std::uint8_t>;
  using Chunks = std::vector<std::pair<std::string, Bytes>>;

  CSoundFontBuilder() {
    fInfo = {{"ifil", Words({2, 4})}, {"isng", Text("Sampler", 8)}, {"INAM", Text("Tiny", 6)}};
    fSampleData = {{"smpl", Bytes(2 * kSampleWords, 1)}};
    fTables = {
        {"phdr", Join({Preset("Piano", 3, 1, 0), Preset("EOP", 0, 0, 1)})},
        {"pbag", Words({0, 0, 1, 0})},
        {"pmod", Bytes(10)},
        {"pgen", Words({41, 0, 0, 0})},
        {"inst", Join({Instrument("Piano Inst", 0), Instrument("EOI", 1)})},
        {"ibag", Words({0, 0, 1, 0})},
        {"imod", Bytes(10)},
        {"igen", Words({53, 0, 0, 0})},
        {"shdr", Join({Sample("Piano C4", 0, 64, 8, 56, 0, 1), Sample("EOS", 0, 0, 0, 0, 0, 0)})},
    };
  }

  static constexpr std::size_t kSampleWords = 64;

  Chunks fInfo;
  Chunks fSampleData;
  Chunks fTables;
  /// The order of the lists.
  std::vector<std::string> fLists = {"INFO", "sdta", "pdta"};

  /// The data of a chunk of any list; there must be one.
  Bytes& Data(std::string_view id) {
    for (Chunks* list : {&fInfo, &fSampleData, &fTables}) {
      for (auto& [name, data] : *list) {
        if (name == id) return data;
      }
    }
    throw std::out_of_range(std::string(id));
  }

  /// Sets a u16 in a chunk's data.
  CSoundFontBuilder& Set16(std::string_view id, std::size_t offset, unsigned value) {
    Data(id).at(offset) = static_cast<std::uint8_t>(value);
    Data(id).at(offset + 1) = static_cast<std::uint8_t>(value >> 8);
    return *this;
  }
  CSoundFontBuilder& Set32(std::string_view id, std::size_t offset, std::uint32_t value) {
    return Set16(id, offset, value & 0xFFFF).Set16(id, offset + 2, value >> 16);
  }

  Bytes Build() const {
    Bytes contents = Text("sfbk", 4);
    for (const std::string& list : fLists) {
      const Chunks& chunks = list == "INFO" ? fInfo : list == "sdta" ? fSampleData : fTables;
      Bytes body = Text(list, 4);
      for (const auto& [id, data] : chunks) body = Join({body, Chunk(id, data)});
      contents = Join({contents, Chunk("LIST", body)});
    }
    return Chunk("RIFF", contents);
  }
  std::shared_ptr<NSBigFilePackage::CMemoryMedia> Media() const {
    return std::make_shared<NSBigFilePackage::CMemoryMedia>(Build());
  }

  static Bytes Preset(std::string_view name, unsigned program, unsigned bank, unsigned zone) {
    return Join({Text(name, 20), Words({program, bank, zone}), Bytes(12)});
  }
  static Bytes Instrument(std::string_view name, unsigned zone) {
    return Join({Text(name, 20), Words({zone})});
  }
  static Bytes Sample(std::string_view name, unsigned start, unsigned end, unsigned loopStart,
                      unsigned loopEnd, unsigned link, unsigned type) {
    return Join({Text(name, 20), Words({start, 0, end, 0, loopStart, 0, loopEnd, 0, 44100, 0}),
                 Bytes{60, 0}, Words({link, type})});
  }
  static Bytes Join(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
  }
  /// u16 values, little-endian.
  static Bytes Words(std::initializer_list<unsigned> values) {
    Bytes bytes;
    for (const unsigned value : values) {
      bytes.push_back(static_cast<std::uint8_t>(value));
      bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    }
    return bytes;
  }
  /// Cut or filled with zeros to `length`.
  static Bytes Text(std::string_view text, std::size_t length) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(length);
    return bytes;
  }

 private:
  static Bytes Chunk(std::string_view id, const Bytes& data) {
    const auto size = static_cast<unsigned>(data.size());
    return Join({Text(id, 4), Words({size & 0xFFFF, size >> 16}), data, Bytes(size % 2)});
  }
};

}  // namespace NSTest
