#include "app/StructureDump.h"
#include "fuzz/FuzzInput.h"

using namespace NSTambraPacking;

/// Whatever the file is: each field that is told of lies inside it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const CTextResources texts;
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  const auto check = [&](const CDumpField& field) {
    NSFuzz::Require(field.fOffset <= size && field.fSize <= size - field.fOffset);
    NSFuzz::Require(field.fBytes.size() <= field.fSize && !field.fName.empty());
  };
  return NSFuzz::Try([&] { DumpFile(media, KindOfFile(media), texts, check, [] {}); });
}
