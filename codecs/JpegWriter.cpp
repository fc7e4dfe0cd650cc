#include "codecs/JpegWriter.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/StdException.h"

#include "codecs/JpegGuard.h"

namespace NSTambraPacking {

namespace {

constexpr std::size_t kBufferSize = 16384;  // bytes

/// One encoding. The step is run by the guard and owns nothing itself.
class CEncoding {
 public:
  CEncoding(const CPixels& pixels, int quality)
      : fPixels(pixels), fQuality(quality), fBuffer(kBufferSize) {
    fLibrary.err = fGuard.Manager();
    fLibrary.client_data = &fGuard;
    fTarget.fOwner = this;
    fTarget.init_destination = [](j_compress_ptr library) { Owner(library).EmptyBuffer(); };
    fTarget.empty_output_buffer = TakeBuffer;
    fTarget.term_destination = [](j_compress_ptr library) {
      Take(library, kBufferSize - Owner(library).fTarget.free_in_buffer);
    };
  }
  CEncoding(const CEncoding&) = delete;
  CEncoding& operator=(const CEncoding&) = delete;
  ~CEncoding() { jpeg_destroy_compress(&fLibrary); }

  std::vector<std::uint8_t> Run() {
    fGuard.Run(*this, &CEncoding::Write);
    return std::move(fBytes);
  }

 private:
  /// The library's destination, with the way back to its owner.
  struct CTarget : jpeg_destination_mgr {
    CEncoding* fOwner;
  };

  static CEncoding& Owner(j_compress_ptr library) {
    return *static_cast<CTarget*>(library->dest)->fOwner;
  }

  void EmptyBuffer() {
    fTarget.next_output_byte = fBuffer.data();
    fTarget.free_in_buffer = fBuffer.size();
  }

  static boolean TakeBuffer(j_compress_ptr library) {
    Take(library, kBufferSize);  // all of it, whatever the library says is free
    return TRUE;
  }

  static void Take(j_compress_ptr library, std::size_t count) {
    CEncoding& self = Owner(library);
    bool failed = false;
    try {
      self.fBytes.insert(self.fBytes.end(), self.fBuffer.begin(),
                         self.fBuffer.begin() + static_cast<std::ptrdiff_t>(count));
    } catch (...) {
      self.fGuard.Capture();
      failed = true;
    }
    // Only here, since a jump out of a catch block would leave its exception behind.
    if (failed) self.fGuard.JumpBack();
    self.EmptyBuffer();
  }

  void Write() {
    jpeg_create_compress(&fLibrary);
    fLibrary.dest = &fTarget;
    fLibrary.image_width = fPixels.fSize.fWidth;
    fLibrary.image_height = fPixels.fSize.fHeight;
    fLibrary.input_components = 3;
    fLibrary.in_color_space = JCS_RGB;
    jpeg_set_defaults(&fLibrary);
    jpeg_set_quality(&fLibrary, fQuality, TRUE);
    jpeg_start_compress(&fLibrary, TRUE);
    while (fLibrary.next_scanline < fLibrary.image_height) {
      const std::size_t offset = std::size_t{fLibrary.next_scanline} * fLibrary.image_width * 3;
      // The library only reads the line but does not say so.
      auto* line = const_cast<JSAMPROW>(fPixels.fRGB.data() + offset);
      jpeg_write_scanlines(&fLibrary, &line, 1);
    }
    jpeg_finish_compress(&fLibrary);
  }

  const CPixels& fPixels;
  int fQuality;
  CJpegGuard fGuard;
  jpeg_compress_struct fLibrary{};
  CTarget fTarget{};
  std::vector<std::uint8_t> fBuffer;
  std::vector<std::uint8_t> fBytes;
};

}  // namespace

std::vector<std::uint8_t> WriteJpeg(const CPixels& pixels, int quality) {
  const std::uint64_t count = std::uint64_t{pixels.fSize.fWidth} * pixels.fSize.fHeight;
  if (count == 0 || pixels.fRGB.size() / 3 != count || pixels.fRGB.size() % 3 != 0) {
    throw NSMordel::NSMordelDetails::XStdInvalidArgument("the pixels do not fit their size");
  }
  return CEncoding(pixels, quality).Run();
}

}  // namespace NSTambraPacking
