#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/SampleUnpacking.h"
#include "filetypes/dwop/DWOPEncoder.h"
#include "package/MemoryMedia.h"
#include "tests/support/ReferenceDWOP.h"
#include "tests/support/TestSignal.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using NSTest::ESignal;
using NSTest::MakeSignal;
using CBytes = std::vector<std::uint8_t>;
using CSamples = std::vector<std::int32_t>;

constexpr ESamplePacking kPackings16[] = {ESamplePacking::k16Little, ESamplePacking::k16Big,
                                          ESamplePacking::kInt32};
constexpr ESamplePacking kPackings24[] = {ESamplePacking::k24Little, ESamplePacking::k24Big,
                                          ESamplePacking::kInt32};

std::vector<EDWOPForm> Forms() {
  std::vector<EDWOPForm> forms = {EDWOPForm::kPortable};
  if (CanRunDWOPForm(EDWOPForm::kAVX2)) forms.push_back(EDWOPForm::kAVX2);
  return forms;
}

CBytes Pack(const CSamples& samples, ESamplePacking packing) {
  const std::size_t size = SampleBytes(packing);
  const bool isBig = packing == ESamplePacking::k16Big || packing == ESamplePacking::k24Big ||
                     (packing == ESamplePacking::kInt32 && std::endian::native == std::endian::big);
  CBytes bytes;
  for (const std::int32_t sample : samples) {
    for (std::size_t i = 0; i < size; ++i) {
      bytes.push_back(static_cast<std::uint8_t>(sample >> 8 * (isBig ? size - 1 - i : i)));
    }
  }
  return bytes;
}

/// The bit stream, the frames spread over calls of so many frames; the last number is repeated.
CBytes Encode(EDWOPForm form, unsigned channels, ESamplePacking packing, const CSamples& samples,
              const std::vector<std::size_t>& calls = {SIZE_MAX}) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  CDWOPEncoder encoder(cursor, channels, form);
  // No byte more than the samples: the memory behind them must not be read.
  const CBytes bytes = Pack(samples, packing);
  const std::size_t frameBytes = SampleBytes(packing) * channels;
  std::size_t call = 0;
  for (std::span<const std::uint8_t> rest(bytes); !rest.empty();) {
    const std::size_t frames = std::min(rest.size() / frameBytes, calls[call]);
    encoder.Encode(packing, rest.first(frames * frameBytes));
    rest = rest.subspan(frames * frameBytes);
    if (call + 1 < calls.size()) ++call;
  }
  encoder.Finish();
  return media.TakeBytes();
}

CBytes Reference(unsigned channels, const CSamples& samples) {
  const CBytes stream = NSTest::ReferenceEncode({channels, 24, 0}, samples);
  return {stream.begin() + 26, stream.end()};
}

TEST(DWOPEncoder, EveryFormAndPackingAgreesWithTheReference) {
  std::uint32_t seed = 1;
  for (int kind = 0; kind < static_cast<int>(ESignal::kCount); ++kind) {
    for (const unsigned width : {16u, 24u}) {
      for (const unsigned channels : {1u, 2u}) {
        for (const std::size_t length : {1u, 1026u, 4095u, 4097u}) {
          const CSamples samples =
              MakeSignal(static_cast<ESignal>(kind), width, length * channels, ++seed);
          const CBytes expected = Reference(channels, samples);
          for (const EDWOPForm form : Forms()) {
            for (const ESamplePacking packing : width == 16 ? kPackings16 : kPackings24) {
              ASSERT_EQ(Encode(form, channels, packing, samples), expected)
                  << "signal " << kind << ", " << width << " bits, " << channels << " channels, "
                  << length << " frames, packing " << static_cast<int>(packing) << ", form "
                  << static_cast<int>(form);
            }
          }
        }
      }
    }
  }
}

/// Signals glued from pieces of every kind, so that segments that are coded side by side start
/// with wrong guesses, escape and meet values that are beyond 24 bits; in calls of all lengths.
RC_GTEST_PROP(DWOPEncoder, AgreesWithTheReferenceHoweverTheFramesAreSpread, ()) {
  const unsigned channels = *rc::gen::element(1u, 2u);
  const unsigned width = *rc::gen::weightedElement<unsigned>({{4, 16}, {4, 24}, {1, 32}});
  CSamples samples;
  for (int piece = *rc::gen::inRange(1, 9); piece > 0; --piece) {
    const auto kind = static_cast<ESignal>(*rc::gen::inRange(0, static_cast<int>(ESignal::kCount)));
    const CSamples more = MakeSignal(kind, width, *rc::gen::inRange<std::size_t>(0, 1500),
                                     *rc::gen::arbitrary<std::uint32_t>());
    samples.insert(samples.end(), more.begin(), more.end());
  }
  samples.resize(samples.size() / channels * channels);
  auto calls = *rc::gen::container<std::vector<std::size_t>>(
      rc::gen::weightedOneOf<std::size_t>({{1, rc::gen::element<std::size_t>(0, 1, 1031)},
                                           {1, rc::gen::inRange<std::size_t>(0, 6000)}}));
  calls.push_back(SIZE_MAX);
  const CBytes expected = Reference(channels, samples);
  for (const EDWOPForm form : Forms()) {
    for (const ESamplePacking packing : width == 16 ? kPackings16 : kPackings24) {
      const auto used = width == 32 ? ESamplePacking::kInt32 : packing;
      RC_ASSERT(Encode(form, channels, used, samples, calls) == expected);
    }
  }
}

/// Values that no 24-bit source has drive the sums around 2^32, where the modulus can become 0.
RC_GTEST_PROP(DWOPEncoder, SurvivesWrapAroundOfSumsAndErrors, ()) {
  const auto extremes = rc::gen::weightedOneOf<std::int32_t>(
      {{3, rc::gen::element(INT32_MIN, INT32_MAX, INT32_MIN + 1, 0, -1, 1 << 30)},
       {1, rc::gen::arbitrary<std::int32_t>()}});
  const auto samples = *rc::gen::container<CSamples>(400, extremes);
  for (const EDWOPForm form : Forms()) {
    RC_ASSERT(Encode(form, 1, ESamplePacking::kInt32, samples) == Reference(1, samples));
  }
}

/// Memory that remembers the lengths of its writes.
class CRecordingMedia : public CMemoryMedia {
 public:
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override {
    fWrites.push_back(source.size());
    CMemoryMedia::Write(position, source);
  }
  std::vector<std::size_t> fWrites;
};

TEST(DWOPEncoder, WritesPiecesOf65536Bytes) {
  for (const EDWOPForm form : Forms()) {
    CRecordingMedia media;
    CMediaCursor cursor(media);
    CDWOPEncoder encoder(cursor, 1, form);
    encoder.Encode(MakeSignal(ESignal::kNoise, 24, 60000, 3));
    encoder.Finish();
    std::vector<std::size_t> writes;
    for (std::size_t rest = media.Bytes().size(); rest > 0; rest -= writes.back()) {
      writes.push_back(std::min<std::size_t>(rest, 65536));
    }
    EXPECT_EQ(media.fWrites, writes);
    EXPECT_GT(writes.size(), 2u);
  }
}

TEST(DWOPEncoder, RefusesOtherThanOneOrTwoChannels) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  EXPECT_THROW(CDWOPEncoder(cursor, 0), NSMordel::XFormatViolation);
  EXPECT_THROW(CDWOPEncoder(cursor, 3), NSMordel::XFormatViolation);
}

}  // namespace
}  // namespace NSTambraPacking
