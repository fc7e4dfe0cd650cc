#include "filetypes/DocumentText.h"

#include <span>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

std::string ReadDocumentText(const NSBigFilePackage::IMedia& source) {
  const std::uint64_t size = source.Size();
  if (size > kGreatestXMLDocument) {
    throw NSMordel::XFormatViolation("the XML document has " + std::to_string(size) +
                                     " bytes; at most " + std::to_string(kGreatestXMLDocument) +
                                     " can be read");
  }
  std::string text(static_cast<std::size_t>(size), '\0');
  NSBigFilePackage::ReadExactly(
      source, 0, std::span(reinterpret_cast<std::uint8_t*>(text.data()), text.size()));
  return text;
}

}  // namespace NSTambraPacking
