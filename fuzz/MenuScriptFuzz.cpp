#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/MenuScript.h"
#include "fuzz/FuzzInput.h"

using namespace NSTambraPacking;

namespace {

std::string Quoted(const std::u16string& text) {
  const char quote = text.find(u'}') == text.npos ? '{' : '\'';
  return quote + NSTolbrook::StrictUtf8FromText(text) + (quote == '{' ? '}' : quote);
}

std::string Write(const std::vector<CMenu>& menus) {
  std::string script;
  for (const CMenu& menu : menus) {
    script += std::to_string(menu.fId) + Quoted(menu.fTitle) + "(\n";
    for (const CMenuItem& item : menu.fItems) {
      script += Quoted(item.fText) + "[id=" + std::to_string(item.fId) +
                " key=" + Quoted(item.fKey) + " flags='";
      if (item.fDisabled) script += "disabled ";
      if (item.fCheckable) script += item.fChecked ? "checked" : "checkable";
      script += "']\n";
    }
    script += ")\n";
  }
  return script;
}

}  // namespace

/// Menus that can be read are the same when they were written and read again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const CMenuScript script("fuzz", input.Text());
    for (const CMenu& menu : script.Menus()) NSFuzz::Require(script.Menu(menu.fId).fId == menu.fId);
    const std::string written = Write(script.Menus());
    NSFuzz::Require(Write(CMenuScript("fuzz", written).Menus()) == written);
  });
}
