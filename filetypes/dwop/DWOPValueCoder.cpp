#include "filetypes/dwop/DWOPValueCoder.h"

#include <algorithm>
#include <array>

#include "filetypes/dwop/DWOPZigzag.h"

namespace NSTambraPacking {

namespace {

/// Values that are unpacked and coded at a time; the room for their longest codes can be reserved.
constexpr std::size_t kPieceValues = 1024;
static_assert(kPieceValues * kDWOPLongestCode <= CDWOPBitWriter::kMostReserved);

/// What is to be written for one value: the error of the chosen order, folded, and its modulus.
struct CResidual {
  std::uint32_t fZigzag;
  std::uint32_t fModulus;
};

/// Predicts the values of one channel. Writing is left to a loop of its own, so that the state
/// stays in registers here.
class CPredictor {
 public:
  explicit CPredictor(const CDWOPEncodeState& state)
      : fError0(state.fErrors[0]),
        fError1(state.fErrors[1]),
        fError2(state.fErrors[2]),
        fError3(state.fErrors[3]),
        fSum0(state.fSums[0]),
        fSum1(state.fSums[1]),
        fSum2(state.fSums[2]),
        fSum3(state.fSums[3]),
        fSum4(state.fSums[4]) {}

  CDWOPEncodeState State() const {
    return {{fError0, fError1, fError2, fError3}, {fSum0, fSum1, fSum2, fSum3, fSum4}};
  }

  CResidual Predict(std::uint32_t value) {
    const std::uint32_t error1 = value - fError0;
    const std::uint32_t error2 = error1 - fError1;
    const std::uint32_t error3 = error2 - fError2;
    const std::uint32_t error4 = error3 - fError3;
    fError0 = value;
    fError1 = error1;
    fError2 = error2;
    fError3 = error3;
    const std::uint32_t zigzag0 = ZigzagFromError(value);
    const std::uint32_t zigzag1 = ZigzagFromError(error1);
    const std::uint32_t zigzag2 = ZigzagFromError(error2);
    const std::uint32_t zigzag3 = ZigzagFromError(error3);
    const std::uint32_t zigzag4 = ZigzagFromError(error4);
    // The order with the smallest sum before this value; of equals the lowest.
    std::uint32_t sum = fSum0;
    std::uint32_t zigzag = zigzag0;
    Prefer(fSum1, zigzag1, sum, zigzag);
    Prefer(fSum2, zigzag2, sum, zigzag);
    Prefer(fSum3, zigzag3, sum, zigzag);
    Prefer(fSum4, zigzag4, sum, zigzag);
    Follow(fSum0, zigzag0);
    Follow(fSum1, zigzag1);
    Follow(fSum2, zigzag2);
    Follow(fSum3, zigzag3);
    Follow(fSum4, zigzag4);
    // Sums that wrapped around can make the modulus 0.
    return {zigzag, std::max<std::uint32_t>(((sum + 12) * 3) >> 7, 1)};
  }

 private:
  static void Prefer(std::uint32_t sum, std::uint32_t zigzag, std::uint32_t& bestSum,
                     std::uint32_t& bestZigzag) {
    bestZigzag = sum < bestSum ? zigzag : bestZigzag;
    bestSum = sum < bestSum ? sum : bestSum;
  }
  static void Follow(std::uint32_t& sum, std::uint32_t zigzag) {
    sum = (sum + zigzag) - (sum >> 5);
  }

  std::uint32_t fError0, fError1, fError2, fError3;
  std::uint32_t fSum0, fSum1, fSum2, fSum3, fSum4;
};

/// Predicts a channel of interleaved samples; the second one is the difference of right and left.
template <unsigned Channels, unsigned Channel>
void Predict(std::span<const std::int32_t> samples, CDWOPEncodeState& state,
             std::span<CResidual> residuals) {
  CPredictor predictor(state);
  for (std::size_t i = Channel; i < samples.size(); i += Channels) {
    auto value = static_cast<std::uint32_t>(samples[i]);
    if constexpr (Channel == 1) value -= static_cast<std::uint32_t>(samples[i - 1]);
    residuals[i] = predictor.Predict(value);
  }
  state = predictor.State();
}

}  // namespace

CDWOPEncodeState StartOfDWOPStream() {
  CDWOPEncodeState state{};
  std::fill(std::begin(state.fSums), std::end(state.fSums), kDWOPInitialSum);
  return state;
}

void CodeDWOPValues(const CPackedFrames& frames, CDWOPEncodeState* states, CDWOPBitWriter& writer) {
  std::array<std::int32_t, kPieceValues> samples;
  std::array<CResidual, kPieceValues> residuals;
  const std::size_t most = kPieceValues / frames.fChannels;
  for (std::size_t done = 0; done < frames.fFrames; done += most) {
    const CPackedFrames part = frames.Part(done, std::min(most, frames.fFrames - done));
    const auto piece = std::span(samples).first(part.fFrames * part.fChannels);
    UnpackSamples(part.fPacking, {part.fBytes, part.fFrames * part.FrameBytes()}, piece);
    if (frames.fChannels == 1) {
      Predict<1, 0>(piece, states[0], residuals);
    } else {
      Predict<2, 0>(piece, states[0], residuals);
      Predict<2, 1>(piece, states[1], residuals);
    }
    CDWOPBitPosition position = writer.Reserve(piece.size() * kDWOPLongestCode);
    for (const CResidual& residual : std::span(residuals).first(piece.size())) {
      position.AppendResidual(residual.fZigzag, residual.fModulus);
    }
    writer.SetPosition(position);
  }
}

void SetErrorsBehind(const CPackedFrames& frames, CDWOPEncodeState* states) {
  std::array<std::int32_t, 8> samples{};
  const CPackedFrames last = frames.Part(frames.fFrames - 4, 4);
  UnpackSamples(last.fPacking, {last.fBytes, 4 * last.FrameBytes()},
                std::span(samples).first(4 * last.fChannels));
  for (unsigned channel = 0; channel < last.fChannels; ++channel) {
    std::uint32_t* errors = states[channel].fErrors;
    // Differences of the last four values, of ever higher order.
    std::array<std::uint32_t, 4> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::size_t frame = i * last.fChannels;
      values[i] = static_cast<std::uint32_t>(samples[frame + channel]);
      if (channel == 1) values[i] -= static_cast<std::uint32_t>(samples[frame]);
    }
    for (std::size_t order = 0; order < 4; ++order) {
      errors[order] = values[3];
      for (std::size_t i = 3; i > order; --i) values[i] -= values[i - 1];
    }
  }
}

}  // namespace NSTambraPacking
