#include "app/demo/DemoAudio.h"

#include <bit>

#include "app/demo/DemoBytes.h"
#include "app/demo/DemoChunks.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::EByteOrder;
using NSTolbrook::EChunkKind;
using NSTolbrook::MakeFourCharCode;
using Bytes = std::vector<std::uint8_t>;
using CRIFFChunks = TDemoChunks<NSTolbrook::CRIFFWriter2>;
using CIFFChunks = TDemoChunks<NSTolbrook::CIFFWriter2>;

constexpr EByteOrder kLittle = EByteOrder::kLittleEndian;
constexpr EByteOrder kBig = EByteOrder::kBigEndian;

/// The samples in the width of the sound; 8 bits are offset binary.
Bytes SampleBytes(const CDemoSound& sound, EByteOrder order) {
  const unsigned count = sound.fBits / 8U;
  Bytes bytes;
  bytes.reserve(sound.fSamples.size() * count);
  for (const std::int32_t sample : sound.fSamples) {
    const std::uint32_t offset = sound.fBits == 8 ? 0x800000U : 0U;
    const std::uint32_t value = (static_cast<std::uint32_t>(sample) + offset) >> (24 - sound.fBits);
    for (unsigned i = 0; i < count; ++i) {
      const unsigned place = order == kLittle ? i : count - 1 - i;
      bytes.push_back(static_cast<std::uint8_t>(value >> (8 * place)));
    }
  }
  return bytes;
}

Bytes WAVEFormat(const CDemoSound& sound) {
  const auto frameBytes = static_cast<std::uint16_t>(sound.fChannels * sound.fBits / 8);
  CDemoBytes format(kLittle);
  format.Add<std::uint16_t>(1).Add(sound.fChannels).Add(sound.fRate);
  format.Add<std::uint32_t>(sound.fRate * frameBytes).Add(frameBytes).Add(sound.fBits);
  return format.Take();
}

Bytes Sampler(const CDemoSound& sound) {
  // A fraction counts 2^-32 semitones.
  const auto fraction = static_cast<std::uint32_t>((std::uint64_t{sound.fFineTune} << 32) / 100);
  const std::uint32_t loops = sound.fLoopMode == 0 ? 0 : 1;
  CDemoBytes sampler(kLittle);
  sampler.Zeros(8).Add<std::uint32_t>(1'000'000'000 / sound.fRate);
  sampler.Add<std::uint32_t>(sound.fRootKey).Add(fraction).Zeros(8).Add(loops).Zeros(4);
  if (loops == 0) return sampler.Take();
  sampler.Add<std::uint32_t>(1).Add<std::uint32_t>(sound.fLoopMode == 2 ? 1 : 0);
  // The end is the last frame that is played.
  sampler.Add(sound.fLoopStart).Add(sound.fLoopEnd - 1).Zeros(8);
  return sampler.Take();
}

/// Tuning, and the whole range of keys and velocities.
Bytes SimpleInstrument(const CDemoSound& sound) {
  return {sound.fRootKey, sound.fFineTune, 0, 0, 127, 1, 127};
}

Bytes BroadcastText(const std::string& title) {
  CDemoBytes text(kLittle);
  text.Field(title, 256).Field("Demo", 32).Field("DEMO0001", 32).Field("2026-01-01", 10);
  return text.Field("12:00:00", 8).Zeros(8).Add<std::uint16_t>(1).Zeros(254).Take();
}

Bytes InfoList(const std::string& title) {
  CRIFFChunks list;
  list.Chunk(MakeFourCharCode("INAM"), CDemoBytes(kLittle).Text(title).Zeros(1).Bytes());
  list.Chunk(MakeFourCharCode("ISFT"), CDemoBytes(kLittle).Text("Tambra demo").Zeros(1).Bytes());
  return list.Take();
}

/// 80 bits, IEEE 754 extended: sign and exponent, then the mantissa with its leading one.
void AddExtended(CDemoBytes& bytes, std::uint32_t value) {
  const auto shift = static_cast<unsigned>(std::countl_zero(std::uint64_t{value}));
  bytes.Add(static_cast<std::uint16_t>(16383 + 63 - shift)).Add(std::uint64_t{value} << shift);
}

Bytes Common(const CDemoSound& sound, bool isLittleEndian) {
  CDemoBytes common(kBig);
  common.Add(sound.fChannels).Add(sound.Frames()).Add(sound.fBits);
  AddExtended(common, sound.fRate);
  // The coding's name is a length byte and characters, of even length together.
  if (isLittleEndian) common.Code(MakeFourCharCode("sowt")).Text("\x0DLittle-endian");
  return common.Take();
}

constexpr std::uint16_t kLoopStartMarker = 1;
constexpr std::uint16_t kLoopEndMarker = 2;

Bytes Markers(const CDemoSound& sound) {
  CDemoBytes markers(kBig);
  markers.Add<std::uint16_t>(2);
  markers.Add(kLoopStartMarker)
      .Add(sound.fLoopStart)
      .Text(
          "\x05"
          "Start");
  return markers.Add(kLoopEndMarker)
      .Add(sound.fLoopEnd)
      .Text(
          "\x04"
          "Ende")
      .Zeros(1)
      .Take();
}

Bytes Instrument(const CDemoSound& sound) {
  CDemoBytes instrument(kBig);
  instrument.Bytes(Bytes{sound.fRootKey, sound.fFineTune, 0, 127, 1, 127, 0, 0});
  instrument.Add<std::uint16_t>(sound.fLoopMode);
  instrument.Add(sound.fLoopMode == 0 ? std::uint16_t{0} : kLoopStartMarker);
  instrument.Add(sound.fLoopMode == 0 ? std::uint16_t{0} : kLoopEndMarker);
  return instrument.Zeros(6).Take();  // no release loop
}

}  // namespace

Bytes WriteDemoWAVE(const CDemoSound& sound, EWAVEForm form, const std::string& title) {
  const bool isBroadcast = form == EWAVEForm::kBroadcast;
  CRIFFChunks chunks;
  if (isBroadcast) chunks.Chunk(MakeFourCharCode("bext"), BroadcastText(title));
  chunks.Chunk(MakeFourCharCode("fmt "), WAVEFormat(sound));
  if (isBroadcast) chunks.Chunk(MakeFourCharCode("tdmo"), Bytes{'o', 'd', 'd'});
  chunks.Chunk(MakeFourCharCode("data"), SampleBytes(sound, kLittle));
  if (form == EWAVEForm::kInstrument) {
    chunks.Chunk(MakeFourCharCode("inst"), SimpleInstrument(sound));
  } else if (form != EWAVEForm::kPlain) {
    chunks.Chunk(MakeFourCharCode("smpl"), Sampler(sound));
  }
  if (isBroadcast) {
    chunks.Group(EChunkKind::kList, MakeFourCharCode("INFO"), InfoList(title));
    chunks.Chunk(MakeFourCharCode("zzzz"), Bytes{1, 2, 3, 4, 5});
  }
  return CRIFFChunks().Group(EChunkKind::kForm, MakeFourCharCode("WAVE"), chunks.Take()).Take();
}

Bytes WriteDemoAIFF(const CDemoSound& sound, EAIFFForm form, const std::string& title) {
  const bool isLittleEndian = form == EAIFFForm::kLittleEndian;
  CIFFChunks chunks;
  if (isLittleEndian) {
    // The version of the AIFF-C format, the only one there is.
    chunks.Chunk(MakeFourCharCode("FVER"), CDemoBytes(kBig).Add(0xA2805140U).Bytes());
  }
  chunks.Chunk(MakeFourCharCode("COMM"), Common(sound, isLittleEndian));
  if (!title.empty()) chunks.Chunk(MakeFourCharCode("NAME"), CDemoBytes(kBig).Text(title).Bytes());
  if (form != EAIFFForm::kPlain) {
    if (sound.fLoopMode != 0) chunks.Chunk(MakeFourCharCode("MARK"), Markers(sound));
    chunks.Chunk(MakeFourCharCode("INST"), Instrument(sound));
  }
  CDemoBytes soundData(kBig);
  soundData.Zeros(8).Bytes(SampleBytes(sound, isLittleEndian ? kLittle : kBig));
  chunks.Chunk(MakeFourCharCode("SSND"), soundData.Bytes());
  if (form != EAIFFForm::kPlain) {
    chunks.Chunk(MakeFourCharCode("ANNO"), CDemoBytes(kBig).Text("made for the demo").Bytes());
  }
  return CIFFChunks()
      .Group(EChunkKind::kForm,
             isLittleEndian ? MakeFourCharCode("AIFC") : MakeFourCharCode("AIFF"), chunks.Take())
      .Take();
}

}  // namespace NSTambraPacking
