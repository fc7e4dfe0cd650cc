#include "codecs/JpegReader.h"
#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const NSTambraPacking::CJpegReader reader;
    const auto picture = input.Media();
    const auto [width, height] = reader.ReadPictureSize(picture);
    if (std::uint64_t{width} * height < 1U << 20) reader.ReadPixels(picture);
  });
}
