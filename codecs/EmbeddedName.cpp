#include "codecs/EmbeddedName.h"

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

std::u16string TextFromEmbeddedName(std::string_view bytes) {
  const std::string_view name = bytes.substr(0, bytes.find('\0'));
  auto text = NSTolbrook::StrictTextFromUtf8(name);
  return text ? *text : NSTolbrook::TextFromWindows1252(name);
}

}  // namespace NSTambraPacking
