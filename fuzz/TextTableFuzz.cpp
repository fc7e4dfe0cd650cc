#include "app/AlertText.h"
#include "app/TextTable.h"
#include "fuzz/FuzzInput.h"

using namespace NSTambraPacking;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  for (const auto platform : {EPlatform::kWin, EPlatform::kMac}) {
    NSFuzz::Try([&] {
      const CTextTable table("fuzz", input.Text(), platform);
      for (int entry = 0; entry < 64; ++entry) {
        const auto* text = table.Find(entry);
        if (!text) continue;
        NSFuzz::Require(UnescapeText(*text).size() <= text->size());
        NSFuzz::Try([&] { CAlertText::Parse(*text); });
      }
    });
  }
  return 0;
}
