#pragma once

#include "Parts/TolbrookPackage/Core/FileSystem.h"

namespace NSTambraPacking {

/// The file or folder that a shortcut file leads to: the first of its relative path, taken from
/// the shortcut's own folder, and its local base path that exists. Names are matched exactly, else
/// without regard to case and normalisation. Throws XResolve with the shortcut's path when the
/// file is no shortcut or leads nowhere.
NSTolbrook::NativePath ShortcutTarget(const NSTolbrook::NativePath& shortcut);

}  // namespace NSTambraPacking
