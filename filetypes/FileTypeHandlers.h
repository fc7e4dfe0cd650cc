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
};

/// One processor in all three roles; the arguments construct it.
template <class Processor, class... Arguments>
CFileTypeHandlers MakeProcessor(Arguments&&... arguments) {
  const auto processor = std::make_shared<const Processor>(std::forward<Arguments>(arguments)...);
  return {processor, processor, processor};
}

}  // namespace NSTambraPacking
