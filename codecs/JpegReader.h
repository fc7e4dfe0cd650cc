#pragma once

#include <cstdint>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "package/SplashCheck.h"

namespace NSTambraPacking {

/// A picture's pixels: rows from the top, each of width times red, green and blue, 8 bits each.
struct CPixels {
  CPictureSize fSize;
  std::vector<std::uint8_t> fRGB;
};

/// Decodes JPEG pictures, baseline and progressive. Damaged data, data that ends too early and
/// data without its end marker are XFormatViolation, whereas a viewer would show what it can.
///
/// Limits, XFormatViolation or XUnsupportedFormat beyond them: kPixelsPerByte, kMemoryLimit,
/// kMaximumScans, and the library's 65,500 pixels an edge.
class CJpegReader : public IPictureReader {
 public:
  /// Pixels for each byte of the file. The densest Huffman code spends a bit on 64 pixels.
  static constexpr std::uint64_t kPixelsPerByte = 2000;
  /// Bytes for the coefficients of a picture with several scans, and for the pixels returned.
  static constexpr std::uint64_t kMemoryLimit = 256ULL << 20;
  /// A hostile picture can ask for its whole area to be decoded again by every few bytes.
  static constexpr int kMaximumScans = 100;

  /// Decodes every line. Throws XFormatViolation, XUnsupportedFormat, and as the media.
  CPictureSize ReadPictureSize(const NSBigFilePackage::SharedMedia& picture) const override;

  /// As ReadPictureSize; XUnsupportedFormat also for what has no colours in RGB terms (CMYK), and,
  /// before a line is decoded, for more pixels than `mostBytes` hold.
  CPixels ReadPixels(const NSBigFilePackage::SharedMedia& picture,
                     std::uint64_t mostBytes = kMemoryLimit) const;
};

}  // namespace NSTambraPacking
