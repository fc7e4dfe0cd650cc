#include "app/InfoKeyFile.h"
#include "app/InfoText.h"
#include "app/VersionText.h"
#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const std::u16string text = NSTambraPacking::DecodeInformationText(input.Text());
    NSTambraPacking::ParseInfoKeyFile(text);
    NSTambraPacking::ParseVersionText(NSTambraPacking::TrimInformationText(text));
  });
}
