#include "app/demo/DemoTexts.h"

#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/demo/DemoBytes.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::EByteOrder;
using Bytes = std::vector<std::uint8_t>;

Bytes Utf8(const std::u16string& text) {
  const std::string bytes = NSTolbrook::StrictUtf8FromText(text);
  return {bytes.begin(), bytes.end()};
}

Bytes Utf16LittleEndian(const std::u16string& text) {
  CDemoBytes bytes(EByteOrder::kLittleEndian);
  for (const char16_t unit : text) bytes.Add(static_cast<std::uint16_t>(unit));
  return bytes.Take();
}

Bytes Windows1252(const std::u16string& text) {
  const auto bytes = NSTolbrook::Windows1252FromText(text);
  if (!bytes) throw NSMordel::XInvariantCorrupt("a demo text is not in Windows-1252");
  return {bytes->begin(), bytes->end()};
}

constexpr const char16_t* kMark = u"\uFEFF";

std::u16string KeyFile() {
  std::u16string text = u"CHARACTER_ENCODING=\"UTF-8\"\r\n\r\n";
  const auto add = [&text](std::u16string_view key, const std::u16string& value) {
    text.append(key).append(u" = \"").append(value).append(u"\"\r\n");
  };
  add(u"NAME", u"so hieße sie ohne NAME.TXT");
  add(u"PROHIBITED_DEVICES", u"Ausgemustertes Gerät; Prototyp 0");
  add(u"WARN_ABOUT_PROHIBITED_DEVICES", u"YES");
  add(u"WARN_ABOUT_UNUSED_SAMPLES", u"YES");
  add(u"SKIP_ITEM", kDemoUnfinishedFolder);
  return text;
}

}  // namespace

DemoFiles MakeDemoTexts() {
  const std::u16string name = kDemoLibraryName;
  return {
      {u"INFO.TXT", Utf8(KeyFile())},
      {u"NAME.TXT", Utf8(kMark + name + u"\r\n")},
      {u"COMMENTS.TXT",
       Utf16LittleEndian(std::u16string(kMark) + u"Eine kleine Sammlung zum Ausprobieren.\r\n" +
                         u"Trommeln, Töne und ein paar Stücke – 太鼓と鈴も入っています。\r\n")},
      {u"COPYRIGHT.TXT", Windows1252(u"© 2026 Verlag für Beispielklänge\r\n")},
      {u"URL.TXT", Windows1252(kDemoLibraryURL)},
      {u"VERSION.TXT", Windows1252(u"1.1.0\r\n")},
      {std::u16string(kDemoUnfinishedFolder) + u"/Ideen.txt", Utf8(u"Mehr Glöckchen?\r\n")},
  };
}

}  // namespace NSTambraPacking
