#include "cli/LabelledLines.h"

#include <algorithm>

namespace NSTambraCli {

void PrintLabelled(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                   const CLabelledLines& lines) {
  std::size_t width = 0;
  for (const auto& [label, value] : lines) {
    width = std::max(width, DisplayWidth(texts.Text(label)));
  }
  for (const auto& [label, value] : lines) {
    std::string margin = PadRight(Printable(texts.Text(label)), width) + "  ";
    for (const std::string& line : PrintableLines(value)) {
      console.Print(margin + line);
      margin.assign(width + 2, ' ');
    }
  }
}

}  // namespace NSTambraCli
