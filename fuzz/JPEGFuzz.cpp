#include "codecs/JpegReader.h"
#include "fuzz/FuzzInput.h"

/// The pixels are those of the size that is told.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto picture = NSFuzz::CFuzzInput(data, size).Media();
  return NSFuzz::Try([&] {
    const NSTambraPacking::CJpegReader reader;
    const auto [width, height] = reader.ReadPictureSize(picture);
    if (std::uint64_t{width} * height > 1U << 18) return;
    const auto pixels = reader.ReadPixels(picture);
    NSFuzz::Require(pixels.fSize.fWidth == width && pixels.fSize.fHeight == height);
    NSFuzz::Require(pixels.fRGB.size() == std::uint64_t{width} * height * 3);
  });
}
