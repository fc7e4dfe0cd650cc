#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/InfoKeyFile.h"
#include "app/InfoText.h"
#include "app/PackageInformation.h"
#include "app/VersionText.h"
#include "fuzz/FuzzInput.h"

using namespace NSTambraPacking;

/// Pairs and versions that can be read are the same when they were written and read again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  const std::u16string text = DecodeInformationText(input.Text());
  const std::u16string_view trimmed = TrimInformationText(text);
  NSFuzz::Require(TrimInformationText(trimmed) == trimmed);

  const auto pairs = ParseInfoKeyFile(text);
  std::u16string written;
  for (const auto& [key, value] : pairs) written += key + u"=\"" + value + u"\"\r\n";
  NSFuzz::Require(ParseInfoKeyFile(written) == pairs);

  if (const auto version = NSFuzz::Read([&] { return ParseVersionText(trimmed); })) {
    NSFuzz::Require(ParseVersionText(NSTolbrook::TextFromUtf8(version->Text())) == *version);
  }
  return NSFuzz::Try([&] {
    const auto texts = ReadPackageTexts({{u"INFO.TXT", std::string(input.Text())}});
    const std::u16string name = texts.fInformation.OutputFileName();
    NSFuzz::Require(name.ends_with(u".tmb") && name.find_first_of(u"/\\:") == name.npos);
  });
}
