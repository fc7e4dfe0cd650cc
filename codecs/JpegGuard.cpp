#include "codecs/JpegGuard.h"

// jerror.h is included for its message codes only.
#include <algorithm>
#include <array>
#include <jerror.h>
#include <new>

namespace NSTambraPacking {

namespace {

/// Pictures that may be right but are not read.
constexpr std::array<int, 7> kUnsupported{
    JERR_ARITH_NOTIMPL,   JERR_BAD_PRECISION,    JERR_CONVERSION_NOTIMPL, JERR_NOT_COMPILED,
    JERR_SOF_UNSUPPORTED, JERR_NO_BACKING_STORE, JERR_IMAGE_TOO_BIG};

/// Warnings that say nothing against the picture's data.
constexpr std::array<int, 2> kHarmless{JWRN_ADOBE_XFORM, JWRN_JFIF_MAJOR};

template <std::size_t N>
bool Contains(const std::array<int, N>& codes, int code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

}  // namespace

CJpegGuard::CJpegGuard() {
  jpeg_std_error(&fManager);
  fManager.error_exit = OnError;
  fManager.emit_message = OnMessage;
  fManager.output_message = OnOutput;
}

void CJpegGuard::Raise() {
  if (fCaptured) fCaptured->Rethrow();
  const std::string message = std::string("JPEG picture: ") + fFault;
  // No fault of the picture's, which may be as whole as can be.
  if (fFault == fText && fManager.msg_code == JERR_OUT_OF_MEMORY) throw std::bad_alloc();
  if (fFault == fText && Contains(kUnsupported, fManager.msg_code)) {
    throw NSMordel::XUnsupportedFormat(message);
  }
  throw NSMordel::XFormatViolation(message);
}

void CJpegGuard::OnError(j_common_ptr object) {
  CJpegGuard& guard = Of(object);
  guard.fManager.format_message(object, guard.fText);
  guard.fFault = guard.fText;
  guard.JumpBack();
}

void CJpegGuard::OnMessage(j_common_ptr object, int level) {
  // Below 0 are warnings; the library would go on with made-up data.
  if (level < 0 && !Contains(kHarmless, object->err->msg_code)) OnError(object);
}

}  // namespace NSTambraPacking
