#include "filetypes/CopyPacker.h"

#include <algorithm>
#include <span>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/PackageFormat.h"

namespace NSTambraPacking {

namespace {
constexpr std::size_t kBufferSize = 65'536;
constexpr std::size_t kPieceSize = 8'192;
}  // namespace

void CopyToEntry(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
                 const CPackContext& context) {
  const NSBigFilePackage::SharedMedia input = OpenSource(source);
  if (input == nullptr) throw NSMordel::XOpen();
  FitPackageLimit(input->Size(), "the size of the file");  // before gigabytes are copied in vain
  std::vector<std::uint8_t> buffer(kBufferSize);
  const std::span<std::uint8_t> bytes(buffer);
  std::uint64_t position = 0;
  while (const std::size_t filled = input->Read(position, bytes)) {
    context.CheckStop();
    for (std::size_t offset = 0; offset < filled; offset += kPieceSize) {
      destination.Write(position + offset,
                        bytes.subspan(offset, std::min(kPieceSize, filled - offset)));
    }
    position += filled;
  }
}

}  // namespace NSTambraPacking
