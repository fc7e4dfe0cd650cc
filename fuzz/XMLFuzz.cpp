#include "fuzz/FuzzInput.h"
#include "references/XMLReader.h"
#include "references/XMLWriter.h"

using NSTolbrook::CXMLElement;

namespace {

bool Same(const CXMLElement& a, const CXMLElement& b) {
  const auto sameAttribute = [](const auto& left, const auto& right) {
    return left->Name() == right->Name() && left->Value() == right->Value();
  };
  const auto sameChild = [](const auto& left, const auto& right) { return Same(*left, *right); };
  return a.Name() == b.Name() && a.Text() == b.Text() &&
         std::ranges::equal(a.AttributeList(), b.AttributeList(), sameAttribute) &&
         std::ranges::equal(a.ChildList(), b.ChildList(), sameChild);
}

}  // namespace

/// A document that can be read is the same when it was written and read again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  const auto root = NSFuzz::Read([&] { return NSTolbrook::ReadXML(input.Text()); });
  if (!root) return 0;
  const std::string written = NSTolbrook::WriteXML(**root);
  const auto again = NSTolbrook::ReadXML(written);
  NSFuzz::Require(Same(**root, *again) && NSTolbrook::WriteXML(*again) == written);
  return 0;
}
