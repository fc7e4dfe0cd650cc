#pragma once

#include <memory>
#include <utility>

#include "filetypes/FileTypeInterfaces.h"

namespace NSTambraPacking {

/// The objects that handle one row of the file type table.
struct CFileTypeHandlers {
  std::shared_ptr<const IFileTypeVerifier> fVerifier;
  std::shared_ptr<const IFileTypePacker> fPacker;
  std::shared_ptr<const IFileTypeVerifier> fPackedEntryVerifier;
  /// True for patches and songs: their references are resolved before an entry is verified.
  bool fHasReferences = false;
};

/// One processor in all three roles; the arguments construct it.
template <class Processor, class... Arguments>
CFileTypeHandlers MakeProcessor(Arguments&&... arguments) {
  const auto processor = std::make_shared<const Processor>(std::forward<Arguments>(arguments)...);
  return {processor, processor, processor, false};
}

/// As MakeProcessor, for files with references.
template <class Processor, class... Arguments>
CFileTypeHandlers MakeDocumentProcessor(Arguments&&... arguments) {
  CFileTypeHandlers handlers = MakeProcessor<Processor>(std::forward<Arguments>(arguments)...);
  handlers.fHasReferences = true;
  return handlers;
}

}  // namespace NSTambraPacking
