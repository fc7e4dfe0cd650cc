#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTest {

/// The low `count` bytes of a number, lowest first and highest first.
std::string Little(std::uint64_t value, int count);
std::string Big(std::uint64_t value, int count);

/// Builds WAVE and AIFF files of any chunks, right or wrong; bytes are strings.
class CAudioBuilder {
 public:
  static CAudioBuilder WAVE() { return {"RIFF", "WAVE", false}; }
  static CAudioBuilder AIFF() { return {"FORM", "AIFF", true}; }
  static CAudioBuilder AIFC() { return {"FORM", "AIFC", true}; }
  CAudioBuilder(std::string_view outerID, std::string_view type, bool isBigEndian);

  /// Appends a chunk, with its pad byte where the data is odd.
  CAudioBuilder& Chunk(std::string_view id, const std::string& data);
  /// Appends bytes as they are.
  CAudioBuilder& Rubbish(const std::string& bytes);

  /// "fmt " of 16 bytes; block align by the bits unless given.
  CAudioBuilder& Format(int tag, int channels, int bits, std::uint32_t rate = 44100,
                        int blockAlign = -1);
  /// "fmt " of 40 bytes with the sub-format's tag.
  CAudioBuilder& Extensible(int tag, int channels, int containerBits, int validBits);
  CAudioBuilder& Data(const std::string& samples) { return Chunk("data", samples); }
  /// "smpl" with one loop of this kind from `start` to `last`, or without when kind is below 0.
  CAudioBuilder& Sampler(std::uint32_t note, std::uint32_t fraction, int kind = -1,
                         std::uint32_t start = 0, std::uint32_t last = 0);

  /// "COMM"; with a coding when it is not empty.
  CAudioBuilder& Common(int channels, std::uint32_t frames, int bits, std::string_view coding = "",
                        std::uint32_t rate = 44100);
  CAudioBuilder& Sound(const std::string& samples, std::uint32_t offset = 0);
  /// "INST" with a sustain loop between markers 1 and 2.
  CAudioBuilder& Instrument(int note, int detune, int playMode);
  /// "MARK" with markers 1 and 2.
  CAudioBuilder& Markers(std::uint32_t start, std::uint32_t end);

  /// The outer chunk with its size (off by `sizeError`), then what lies behind it.
  std::string Bytes(const std::string& behind = "", std::int32_t sizeError = 0) const;
  NSBigFilePackage::SharedMedia Media() const;

 private:
  std::string Number(std::uint64_t value, int count) const;

  std::string fOuterID;
  std::string fType;
  bool fIsBigEndian;
  std::string fContents;
};

NSBigFilePackage::SharedMedia MediaOfBytes(const std::string& bytes);

}  // namespace NSTest
