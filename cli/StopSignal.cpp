#include "cli/StopSignal.h"

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraCli {

void ThrowIfStopped() {
  if (CStopSignal::Requested()) throw NSMordel::XSilentAbort("User aborted");
}

}  // namespace NSTambraCli
