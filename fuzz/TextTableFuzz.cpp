#include "app/AlertText.h"
#include "app/TextTable.h"
#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const NSTambraPacking::CTextTable table("fuzz", input.Text(), NSTambraPacking::EPlatform::kWin);
    for (int entry = 0; entry < 32; ++entry) {
      if (const auto* text = table.Find(entry)) NSTambraPacking::CAlertText::Parse(*text);
    }
  });
}
