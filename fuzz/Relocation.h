#pragma once

#include "fuzz/FuzzInput.h"
#include "references/ReferenceChunk.h"
#include "references/StandardReferenceRelocator.h"

namespace NSFuzz {

/// The references of a document as they stand in a package that holds all files they name; one that
/// is refused stays as it is. Each has a type, as all that were written have.
inline std::vector<NSTambraPacking::CSampleReference> Relocated(
    const std::vector<std::pair<std::uint32_t, NSTambraPacking::CSampleReference>>& references) {
  using namespace NSTambraPacking;
  CEntryTree tree;
  for (const auto& [kind, reference] : references) {
    for (const auto& path :
         {reference.fRelativePath.Components(), reference.fDatabasePath.Components()}) {
      Try([&] { tree.AddFile(u"Folder/" + JoinComponents(path), path.size() % 2 == 0); });
    }
  }
  const CReferenceLookup lookup(tree, {u"Volume", u"Input"});
  const CStandardReferenceRelocator relocator(lookup, u"Kit", u"");
  std::vector<CSampleReference> relocated;
  for (const auto& each : references) {
    auto moved =
        Read([&] { return relocator.Relocate(each.first, each.second, u"Folder/Document"); });
    relocated.push_back(moved.value_or(each.second));
    auto& type = relocated.back().fType;
    type = type.value_or(TypeOfKind(each.first));
  }
  return relocated;
}

}  // namespace NSFuzz
