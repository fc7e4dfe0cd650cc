#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "references/SampleReference.h"

namespace NSTambraPacking {

/// What became of looking a reference up.
enum class EReferenceClass {
  /// The file was found and is among the files being packed.
  kFoundIncluded,
  /// The file was found but is not among the files being packed.
  kFoundNotIncluded,
  /// The file was not found, and the reference names no package or another one.
  kExternal,
  /// The file was not found, and the reference names the package being built.
  kInternal
};

struct CResolution {
  EReferenceClass fClass = EReferenceClass::kExternal;
  /// The path of the file from the root, joined with "/"; empty when it was not found. A path that
  /// goes on inside a container ends with the container's name here.
  std::u16string fPath;
  /// The file is not where the reference's relative or database form says, but where the end of its
  /// absolute form leads.
  bool fBySearch = false;

  bool IsFound() const {
    return fClass == EReferenceClass::kFoundIncluded ||
           fClass == EReferenceClass::kFoundNotIncluded;
  }
};

/// Classifies references; never throws for one that leads nowhere.
class IReferenceResolver {
 public:
  virtual ~IReferenceResolver() = default;
  /// `documentPath` is the path of the referring document from the root. Safe from several threads.
  virtual CResolution Resolve(const CSampleReference& reference,
                              std::u16string_view documentPath) const = 0;
};

/// Rewrites references so that they lead into the package being built.
class IReferenceRelocator {
 public:
  virtual ~IReferenceRelocator() = default;
  /// `kind` is that of the reference's chunk. Throws XUnsupportedFormat for a kind that cannot be
  /// relocated, and XResolve when the file is not found and the reference does not name the package
  /// being built. Safe from several threads.
  virtual CSampleReference Relocate(std::uint32_t kind, const CSampleReference& reference,
                                    std::u16string_view documentPath) const = 0;
};

}  // namespace NSTambraPacking
