#include "codecs/JpegReader.h"

#include <optional>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/JpegGuard.h"

namespace NSTambraPacking {

using NSBigFilePackage::SharedMedia;

namespace {

constexpr std::size_t kBufferSize = 16384;  // bytes

/// One decoding. The steps are run by the guard and own nothing themselves.
class CDecoding {
 public:
  /// Keeps the pixels when there is room for them, else none.
  CDecoding(const SharedMedia& picture, std::optional<std::uint64_t> room)
      : fMedia(*picture), fKeepsPixels(room), fRoom(room.value_or(0)), fBuffer(kBufferSize) {
    fLibrary.err = fGuard.Manager();
    fLibrary.client_data = &fGuard;
    fSource.fOwner = this;
    fSource.init_source = [](j_decompress_ptr) {};
    fSource.fill_input_buffer = FillBuffer;
    fSource.skip_input_data = Skip;
    fSource.resync_to_restart = jpeg_resync_to_restart;
    fSource.term_source = [](j_decompress_ptr) {};
    fProgress.progress_monitor = CheckScans;
  }
  CDecoding(const CDecoding&) = delete;
  CDecoding& operator=(const CDecoding&) = delete;
  // Allowed for an object that was never created, too: it is all zero.
  ~CDecoding() { jpeg_destroy_decompress(&fLibrary); }

  CPixels Run() {
    fGuard.Run(*this, &CDecoding::ReadHeader);
    CheckSize();
    fGuard.Run(*this, &CDecoding::Start);
    MakeRoom();
    fGuard.Run(*this, &CDecoding::ReadLines);
    return std::move(fPixels);
  }

 private:
  /// The library's source, with the way back to its owner.
  struct CSource : jpeg_source_mgr {
    CDecoding* fOwner;
  };

  void ReadHeader() {
    jpeg_create_decompress(&fLibrary);
    fLibrary.src = &fSource;
    fLibrary.progress = &fProgress;
    fLibrary.mem->max_memory_to_use = static_cast<long>(CJpegReader::kMemoryLimit);
    jpeg_read_header(&fLibrary, TRUE);
  }

  void CheckSize() {
    fPixels.fSize = {fLibrary.image_width, fLibrary.image_height};
    const std::uint64_t pixels = std::uint64_t{fLibrary.image_width} * fLibrary.image_height;
    if (pixels / CJpegReader::kPixelsPerByte > fMedia.Size()) {
      throw NSMordel::XFormatViolation("JPEG picture: " + std::to_string(pixels) +
                                       " pixels in a file of " + std::to_string(fMedia.Size()) +
                                       " bytes");
    }
    if (fKeepsPixels && pixels * 3 > fRoom) {
      throw NSMordel::XUnsupportedFormat("JPEG picture: too large to be shown");
    }
  }

  void Start() {
    fLibrary.out_color_space = fKeepsPixels ? JCS_RGB : fLibrary.jpeg_color_space;
    fLibrary.do_fancy_upsampling = static_cast<boolean>(fKeepsPixels);
    jpeg_start_decompress(&fLibrary);
  }

  void MakeRoom() {
    fLineBytes =
        std::size_t{fLibrary.output_width} * static_cast<std::size_t>(fLibrary.output_components);
    fPixels.fRGB.resize(fKeepsPixels ? fLineBytes * fLibrary.output_height : fLineBytes);
  }

  void ReadLines() {
    while (fLibrary.output_scanline < fLibrary.output_height) {
      JSAMPROW line = fPixels.fRGB.data();
      if (fKeepsPixels) line += fLineBytes * fLibrary.output_scanline;
      jpeg_read_scanlines(&fLibrary, &line, 1);
    }
    jpeg_finish_decompress(&fLibrary);
  }

  static boolean FillBuffer(j_decompress_ptr library) {
    CJpegGuard& guard = CJpegGuard::Of(reinterpret_cast<j_common_ptr>(library));
    CDecoding& self = *static_cast<CSource*>(library->src)->fOwner;
    std::size_t count = 0;
    bool failed = false;
    try {
      count = self.fMedia.Read(self.fPosition, self.fBuffer);
    } catch (...) {
      guard.Capture();
      failed = true;
    }
    // Only here, since a jump out of a catch block would leave its exception behind.
    if (failed) guard.JumpBack();
    if (count == 0) {
      guard.Note("the data ends too early");
      guard.JumpBack();
    }
    self.fPosition += count;
    self.fSource.next_input_byte = self.fBuffer.data();
    self.fSource.bytes_in_buffer = count;
    return TRUE;
  }

  static void Skip(j_decompress_ptr library, long count) {
    CDecoding& self = *static_cast<CSource*>(library->src)->fOwner;
    if (count <= 0) return;
    const auto length = static_cast<std::size_t>(count);
    if (length <= self.fSource.bytes_in_buffer) {
      self.fSource.next_input_byte += length;
      self.fSource.bytes_in_buffer -= length;
    } else {
      self.fPosition += length - self.fSource.bytes_in_buffer;
      self.fSource.bytes_in_buffer = 0;
    }
  }

  static void CheckScans(j_common_ptr common) {
    const auto* library = reinterpret_cast<j_decompress_ptr>(common);
    if (library->input_scan_number <= CJpegReader::kMaximumScans) return;
    CJpegGuard& guard = CJpegGuard::Of(common);
    guard.Note("too many scans");
    guard.JumpBack();
  }

  const NSBigFilePackage::IMedia& fMedia;
  bool fKeepsPixels;
  std::uint64_t fRoom;  ///< bytes of pixels, at most
  CJpegGuard fGuard;
  jpeg_decompress_struct fLibrary{};
  CSource fSource{};
  jpeg_progress_mgr fProgress{};
  std::vector<std::uint8_t> fBuffer;
  /// Of the first byte behind the buffer's, from the media's start.
  std::uint64_t fPosition = 0;
  std::size_t fLineBytes = 0;
  /// All lines, or room for one.
  CPixels fPixels;
};

}  // namespace

CPictureSize CJpegReader::ReadPictureSize(const SharedMedia& picture) const {
  return CDecoding(picture, std::nullopt).Run().fSize;
}

CPixels CJpegReader::ReadPixels(const SharedMedia& picture, std::uint64_t mostBytes) const {
  return CDecoding(picture, mostBytes).Run();
}

}  // namespace NSTambraPacking
