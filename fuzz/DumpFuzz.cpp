#include "app/StructureDump.h"
#include "fuzz/FuzzInput.h"

using namespace NSTambraPacking;

/// Whatever the file is: each field that is told of lies inside it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const CTextResources texts;
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  const EDumpedFile kind = KindOfFile(media);
  const auto check = [&](const CDumpField& field) {
    // In a block store the rest of a field may lie in a block before that of its beginning.
    const std::size_t end = kind == EDumpedFile::kBlockStore ? 0 : field.fOffset + field.fSize;
    NSFuzz::Require(field.fOffset <= size && field.fSize <= size && end <= size);
    NSFuzz::Require(field.fBytes.size() <= field.fSize && !field.fName.empty());
  };
  return NSFuzz::Try([&] { DumpFile(media, kind, texts, check, [] {}); });
}
