#include "fuzz/AudioRoundTrip.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return NSFuzz::AudioRoundTrip({data, size}, NSTambraPacking::EAudioContainer::kWAVE);
}
