#include "app/demo/DemoPicture.h"

#include "app/demo/DemoSynthesis.h"
#include "codecs/JpegWriter.h"

namespace NSTambraPacking {

namespace {

/// Coloured rings on a dark ground, `edge` pixels wide and high; the same motif at every size.
std::vector<std::uint8_t> Rings(std::uint32_t edge) {
  constexpr std::uint32_t kQuarterTurn = 0x40000000;
  CPixels pixels;
  pixels.fSize = {edge, edge};
  pixels.fRGB.reserve(std::size_t{edge} * edge * 3);
  for (std::uint32_t y = 0; y < edge; ++y) {
    for (std::uint32_t x = 0; x < edge; ++x) {
      const std::int64_t right = 2 * std::int64_t{x} - edge;
      const std::int64_t down = 2 * std::int64_t{y} - edge;
      // From 0 at the centre to 2 x 2^20 in the corners.
      const std::int64_t distance =
          ((right * right + down * down) << 20) / (std::int64_t{edge} * edge);
      const auto phase = static_cast<std::uint32_t>(distance << 13);
      const auto level = [&](std::uint32_t turn) {
        const std::int64_t wave = (FixedSine(phase + turn) + (std::int64_t{1} << 30)) >> 24;
        return static_cast<std::uint8_t>(24 + wave * (std::int64_t{5} << 18) /
                                                  ((std::int64_t{4} << 18) + distance));
      };
      pixels.fRGB.insert(pixels.fRGB.end(),
                         {level(0), level(kQuarterTurn / 2), level(kQuarterTurn)});
    }
  }
  return WriteJpeg(pixels, 85);
}

}  // namespace

DemoFiles MakeDemoPictures() {
  return {{u"Splash.jpg", Rings(64)}, {u"Grafik/Umschlag.jpeg", Rings(480)}};
}

}  // namespace NSTambraPacking
