#pragma once

#include <string_view>

#include "filetypes/FileTypeInterfaces.h"

namespace NSTambraPacking {

/// The device that plays SoundFont banks.
inline constexpr std::u16string_view kSoundFontDevice = u"SoundFont Sampler";
/// The device whose patches come in a second form that names no device.
inline constexpr std::u16string_view kSlicedLoopDevice = u"Sliced Loop Player";

/// Notes in the context when `device` is one of the prohibited devices: the same UTF-16 code
/// units, case included. That is no failure; the job decides what it means.
void TestProhibitedDevice(std::u16string_view device, CVerifyContext& context);

}  // namespace NSTambraPacking
