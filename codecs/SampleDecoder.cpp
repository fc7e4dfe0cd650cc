#include "codecs/SampleDecoder.h"

#include <utility>

#include "codecs/IntegerDecoder.h"
#include "codecs/RawLibraryDecoder.h"

namespace NSTambraPacking {

std::unique_ptr<ISampleDecoder> MakeSampleDecoder(NSBigFilePackage::SharedMedia media,
                                                  const CAudioFormat& format) {
  switch (format.fCoding) {
    case ESampleCoding::kSigned:
    case ESampleCoding::kUnsigned:
      return std::make_unique<CIntegerDecoder>(std::move(media), format);
    case ESampleCoding::kFloat:
    case ESampleCoding::kMuLaw:
    case ESampleCoding::kALaw:
      break;
  }
  return std::make_unique<CRawLibraryDecoder>(std::move(media), format);
}

}  // namespace NSTambraPacking
