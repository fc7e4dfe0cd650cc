#include "codecs/RawLibraryDecoder.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <sndfile.h>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

using NSBigFilePackage::SharedMedia;
using NSMordel::NSMordelDetails::XTunneledError;

namespace {

constexpr std::size_t kBlockSamples = 8192;

int LibraryFormat(const CAudioFormat& format) {
  const bool isBigEndian = format.fByteOrder == NSTolbrook::EByteOrder::kBigEndian;
  int subtype = 0;
  if (format.fCoding == ESampleCoding::kMuLaw) subtype = SF_FORMAT_ULAW;
  if (format.fCoding == ESampleCoding::kALaw) subtype = SF_FORMAT_ALAW;
  if (format.fCoding == ESampleCoding::kFloat) {
    subtype = format.fSampleBytes == 4 ? SF_FORMAT_FLOAT : SF_FORMAT_DOUBLE;
  }
  return SF_FORMAT_RAW | subtype | (isBigEndian ? SF_ENDIAN_BIG : SF_ENDIAN_LITTLE);
}

std::int32_t Integer24(double value) {
  constexpr double kScale = 8388608.0;
  if (std::isnan(value)) return 0;
  const double scaled = std::floor(value * kScale + 0.5);
  return static_cast<std::int32_t>(std::clamp(scaled, -kScale, kScale - 1));
}

}  // namespace

/// The sample bytes as a file of the library. The library calls back to read them; a failure of
/// the media is kept, since it must not pass through the library, and raised behind the call.
class CRawLibraryDecoder::CRawFile {
 public:
  CRawFile(SharedMedia media, const CAudioFormat& format)
      : fMedia(std::move(media)), fStart(format.fSamplesStart), fLength(format.SamplesLength()) {
    // One channel: samples are decoded one by one whatever the channels, of which the library
    // does not allow every number.
    SF_INFO info{};
    info.channels = 1;
    info.samplerate = 44100;
    info.format = LibraryFormat(format);
    const bool isKnown = sf_format_check(&info) != 0;
    SF_VIRTUAL_IO calls{GetLength, Seek, ReadBytes, WriteBytes, Tell};
    fHandle.reset(sf_open_virtual(&calls, SFM_READ, &info, this));
    RaiseFailure();
    // Of a form that the library knows nothing else can go wrong.
    if (!fHandle && isKnown) throw std::bad_alloc();
    if (!fHandle) throw NSMordel::XUnsupportedFormat(sf_strerror(nullptr));
  }
  CRawFile(const CRawFile&) = delete;
  CRawFile& operator=(const CRawFile&) = delete;
  ~CRawFile() = default;

  void Read(std::span<double> samples) { Check(samples, sf_read_double); }
  void Read(std::span<std::int16_t> samples) { Check(samples, sf_read_short); }

 private:
  struct CClose {
    void operator()(SNDFILE* handle) const { sf_close(handle); }
  };

  template <class Value>
  void Check(std::span<Value> samples, sf_count_t (*read)(SNDFILE*, Value*, sf_count_t)) {
    const auto wanted = static_cast<sf_count_t>(samples.size());
    const sf_count_t count = read(fHandle.get(), samples.data(), wanted);
    RaiseFailure();
    if (count != wanted) throw NSMordel::XRead("the samples end too early");
  }

  void RaiseFailure() const {
    if (fFailure) fFailure->Rethrow();
  }

  static sf_count_t GetLength(void* self) {
    return static_cast<sf_count_t>(static_cast<CRawFile*>(self)->fLength);
  }

  static sf_count_t Seek(sf_count_t offset, int whence, void* self) {
    auto& file = *static_cast<CRawFile*>(self);
    if (whence == SEEK_CUR) offset += static_cast<sf_count_t>(file.fPosition);
    if (whence == SEEK_END) offset += static_cast<sf_count_t>(file.fLength);
    if (offset < 0) return -1;
    file.fPosition = static_cast<std::uint64_t>(offset);
    return offset;
  }

  static sf_count_t ReadBytes(void* target, sf_count_t count, void* self) {
    auto& file = *static_cast<CRawFile*>(self);
    if (count <= 0 || file.fPosition >= file.fLength) return 0;
    const std::uint64_t length =
        std::min(static_cast<std::uint64_t>(count), file.fLength - file.fPosition);
    try {
      const std::size_t read =
          file.fMedia->Read(file.fStart + file.fPosition,
                            {static_cast<std::uint8_t*>(target), static_cast<std::size_t>(length)});
      file.fPosition += read;
      return static_cast<sf_count_t>(read);
    } catch (...) {
      file.fFailure.emplace();
      return 0;
    }
  }

  static sf_count_t WriteBytes(const void*, sf_count_t, void*) { return 0; }

  static sf_count_t Tell(void* self) {
    return static_cast<sf_count_t>(static_cast<CRawFile*>(self)->fPosition);
  }

  SharedMedia fMedia;
  std::uint64_t fStart;
  std::uint64_t fLength;
  /// Of the next byte, counted from the first sample byte.
  std::uint64_t fPosition = 0;
  std::optional<XTunneledError> fFailure;
  std::unique_ptr<SNDFILE, CClose> fHandle;
};

CRawLibraryDecoder::CRawLibraryDecoder(SharedMedia media, const CAudioFormat& format)
    : fFile(std::make_unique<CRawFile>(std::move(media), format)),
      fIsFloat(format.fCoding == ESampleCoding::kFloat),
      fDoubles(fIsFloat ? kBlockSamples : 0),
      fShorts(fIsFloat ? 0 : kBlockSamples) {}

CRawLibraryDecoder::~CRawLibraryDecoder() = default;

void CRawLibraryDecoder::Read(std::span<std::int32_t> samples) {
  while (!samples.empty()) {
    const std::size_t count = std::min(samples.size(), kBlockSamples);
    if (fIsFloat) {
      const std::span<double> block = std::span(fDoubles).first(count);
      fFile->Read(block);
      std::transform(block.begin(), block.end(), samples.begin(), Integer24);
    } else {
      const std::span<std::int16_t> block = std::span(fShorts).first(count);
      fFile->Read(block);
      std::copy(block.begin(), block.end(), samples.begin());
    }
    samples = samples.subspan(count);
  }
}

std::string SoundLibraryVersion() { return sf_version_string(); }

}  // namespace NSTambraPacking
