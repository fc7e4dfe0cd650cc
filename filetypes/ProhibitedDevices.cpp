#include "filetypes/ProhibitedDevices.h"

#include <algorithm>

namespace NSTambraPacking {

void TestProhibitedDevice(std::u16string_view device, CVerifyContext& context) {
  const auto& prohibited = context.fProhibitedDevices;
  if (std::find(prohibited.begin(), prohibited.end(), device) != prohibited.end()) {
    context.fProhibitedDevicesUsed.emplace(device);
  }
}

}  // namespace NSTambraPacking
