#include "fuzz/Relocation.h"
#include "references/VorlinkPatch.h"
#include "references/XMLReader.h"

using namespace NSTambraPacking;

namespace {

/// The text between the references.
std::string Skeleton(const std::string& text) {
  const auto root = NSTolbrook::ReadXML(text);
  std::string skeleton;
  std::size_t position = 0;
  for (const auto& samples : root->ChildList()) {
    if (samples->Name() != u"Samples") continue;
    for (const auto& child : samples->ChildList()) {
      if (child->Name() != u"SampleReference") continue;
      skeleton += text.substr(position, child->SourceRange().fBegin - position) + '\0';
      position = child->SourceRange().fEnd;
    }
  }
  return skeleton + text.substr(position);
}

}  // namespace

/// A patch that is rewritten holds the relocated references, and all else as it was.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(NSFuzz::CFuzzInput(data, size).Text());
  const auto patch = NSFuzz::Read([&] { return CVorlinkPatch(text); });
  if (!patch) return 0;
  std::vector<std::pair<std::uint32_t, CSampleReference>> references;
  for (const auto& reference : patch->References()) {
    references.emplace_back(KindOfReference(reference), reference);
  }
  const auto relocated = NSFuzz::Relocated(references);
  const std::string written = patch->Rewritten(relocated);
  NSFuzz::Require(CVorlinkPatch(written).References() == relocated);
  NSFuzz::Require(Skeleton(written) == Skeleton(text));
  return 0;
}
