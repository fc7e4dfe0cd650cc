#pragma once

#include <memory>

#include "app/ProgressView.h"
#include "cli/Console.h"

namespace NSTambraCli {

/// A progress view that can step aside for other output.
class ICliProgressView : public NSTambraPacking::IProgressView {
 public:
  /// Takes the view's lines off the terminal; it draws itself again at its next report.
  virtual void Clear() = 0;
};

/// The view that fits where the output goes: redrawn in place on a terminal, a line for each phase
/// in a file or a pipe, one JSON event a line, or nothing when quiet. The console must outlive it.
std::unique_ptr<ICliProgressView> MakeProgressView(const CConsole& console);

}  // namespace NSTambraCli
