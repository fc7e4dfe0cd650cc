#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "Parts/TolbrookPackage/Core/DynamicLibrary.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "codecs/LQXHost.h"
#include "codecs/SlicedLoopLibrary.h"

namespace NSTambraPacking {

/// The host's sliced-loop library, loaded at run time through the seven functions of LQXHost.h.
class CLQXLibrary : public ISlicedLoopLibrary {
 public:
  /// Names the library when no option does.
  static constexpr const char* kEnvironmentVariable = "TAMBRA_LQX_LIBRARY";
  /// More slices than this are taken for damage.
  static constexpr std::int32_t kMostSlices = 65536;
  static constexpr std::int32_t kMostChannels = 64;
  /// Frames rendered of each slice, at most.
  static constexpr std::int32_t kProbeLength = 1024;

  /// Loads and initialises the library. Throws XOpen, with a message that says what is missing,
  /// when it cannot be loaded, lacks one of the functions or fails to initialise itself.
  explicit CLQXLibrary(const NSTolbrook::NativePath& path);
  CLQXLibrary(const CLQXLibrary&) = delete;
  CLQXLibrary& operator=(const CLQXLibrary&) = delete;
  ~CLQXLibrary() override;

  /// Looks at `option`, then at the environment variable, then into `programFolder` for the file
  /// FileName(). Returns null when there is none of the three. What the option or the variable
  /// names, or what stands in the folder, must load: XOpen.
  static std::unique_ptr<CLQXLibrary> Find(const std::optional<NSTolbrook::NativePath>& option,
                                           const NSTolbrook::NativePath& programFolder);

  /// The library's file name on this system.
  static const char* FileName();

  /// Opens the file, reads its description and that of each slice and renders the beginning of
  /// each slice. One file at a time: other threads wait.
  void Verify(const NSBigFilePackage::IMedia& media) const override;

 private:
  class CLoop;

  /// The function `name` as a pointer of the type of `function`; throws XOpen when it is missing.
  template <class Function>
  void Bind(Function*& function, const char* name);

  NSTolbrook::CDynamicLibrary fLibrary;
  decltype(&LQXInitializeDLL) fInitializeDLL = nullptr;
  decltype(&LQXUninitializeDLL) fUninitializeDLL = nullptr;
  decltype(&LQXCreate) fCreate = nullptr;
  decltype(&LQXDelete) fDelete = nullptr;
  decltype(&LQXGetInfo) fGetInfo = nullptr;
  decltype(&LQXGetSliceInfo) fGetSliceInfo = nullptr;
  decltype(&LQXRenderSlice) fRenderSlice = nullptr;
  mutable std::mutex fMutex;  // over every call of the library
};

}  // namespace NSTambraPacking
