#include "fuzz/FuzzInput.h"
#include "references/SampleReference.h"
#include "references/XMLReader.h"
#include "references/XMLWriter.h"

using namespace NSTambraPacking;
using NSTolbrook::CXMLElement;

namespace {

std::shared_ptr<CXMLElement> ThroughText(const CXMLElement& element) {
  return NSTolbrook::ReadXML(NSTolbrook::WriteXML(element));
}

/// A path that can be read is the same when it was written and read again, and prints the same.
template <class Path>
void RunPath(const CXMLElement& element) {
  const auto path = NSFuzz::Read([&] { return Path::Parse(&element); });
  if (!path || !path->IsValid()) return;
  const Path again = Path::Parse(ThroughText(*path->Write()).get());
  NSFuzz::Require(again == *path && again.Print() == path->Print());
  const auto& components = path->Components();
  NSFuzz::Require(SplitPathText(PathTextFromComponents(components), "") == components);
}

void RunReference(const CXMLElement& element) {
  auto reference = NSFuzz::Read([&] { return CSampleReference::Parse(element); });
  if (!reference) return;
  const auto again = CSampleReference::Parse(*ThroughText(*reference->Write(ESampleType::kLQX)));
  if (!reference->fType) reference->fType = ESampleType::kLQX;
  NSFuzz::Require(again == *reference && again.Print() == reference->Print());
}

}  // namespace

/// The input is a document of references and paths, anywhere in it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  const auto root = NSFuzz::Read([&] { return NSTolbrook::ReadXML(input.Text()); });
  if (!root) return 0;
  std::vector<const CXMLElement*> rest = {root->get()};
  for (int count = 0; !rest.empty() && count < 32; ++count) {
    const CXMLElement& element = *rest.back();
    rest.pop_back();
    RunReference(element);
    RunPath<CRelativePath>(element);
    RunPath<CDatabasePath>(element);
    RunPath<CAbsolutePath>(element);
    for (const auto& child : element.ChildList()) rest.push_back(child.get());
  }
  return 0;
}
