#include "codecs/LQXLibrary.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/StdException.h"

namespace NSTambraPacking {

using NSBigFilePackage::IMedia;
using NSMordel::XFormatViolation;
using NSMordel::XOpen;
using NSTolbrook::NativePath;

namespace {

std::unique_ptr<CLQXLibrary> Load(const NativePath& path, const std::string& source) {
  try {
    return std::make_unique<CLQXLibrary>(path);
  } catch (const NSMordel::CExceptionBodyMixin& failure) {
    throw XOpen("cannot use the sliced-loop library \"" + NSTolbrook::DisplayText(path) + "\" (" +
                    source + "): " + failure.Message(),
                failure.Context());
  }
}

}  // namespace

/// A file opened by the library, with the media behind it. No exception crosses the library's
/// frames: what the media throws waits here until the call returns.
class CLQXLibrary::CLoop {
 public:
  CLoop(const CLQXLibrary& library, const IMedia& media)
      : fLibrary(library), fMedia(media), fLoop(nullptr, library.fDelete) {
    LQXHandle handle = nullptr;
    const auto size = static_cast<std::int64_t>(media.Size());
    const std::int32_t result = library.fCreate(&CLoop::Read, this, size, &handle);
    if (result == kLQXNoError) fLoop.reset(handle);
    Check(result);
    if (fLoop == nullptr) throw XFormatViolation("the sliced-loop library gave no loop");
  }
  CLoop(const CLoop&) = delete;
  CLoop& operator=(const CLoop&) = delete;

  LQXInfo Info() {
    LQXInfo info{};
    Check(fLibrary.fGetInfo(fLoop.get(), &info));
    if (info.channels < 1 || info.channels > kMostChannels || info.sampleRate < 1 ||
        info.tempo < 0 || info.length < 0) {
      throw XFormatViolation("a sliced loop of impossible channels, rate, tempo or length");
    }
    if (info.sliceCount < 0 || info.sliceCount > kMostSlices) {
      throw XFormatViolation("a sliced loop of " + std::to_string(info.sliceCount) + " slices");
    }
    return info;
  }

  LQXSliceInfo SliceInfo(const LQXInfo& info, std::int32_t slice) {
    LQXSliceInfo result{};
    Check(fLibrary.fGetSliceInfo(fLoop.get(), slice, &result));
    if (result.position < 0 || result.length < 0 || result.position > info.length ||
        result.length > info.length - result.position) {
      throw XFormatViolation("slice " + std::to_string(slice) + " lies outside its loop");
    }
    return result;
  }

  /// `buffers` has a pointer for each channel, to `frames` values.
  void Render(std::int32_t slice, std::int32_t frames, const std::vector<float*>& buffers) {
    Check(fLibrary.fRenderSlice(fLoop.get(), slice, frames, buffers.data()));
  }

 private:
  static std::int32_t Read(void* user, std::int64_t position, std::uint8_t* destination,
                           std::int32_t count) noexcept {
    CLoop& self = *static_cast<CLoop*>(user);
    if (position < 0 || count < 0 || self.fFailure) return -1;
    try {
      const std::span bytes(destination, static_cast<std::size_t>(count));
      return static_cast<std::int32_t>(
          self.fMedia.Read(static_cast<std::uint64_t>(position), bytes));
    } catch (...) {
      self.fFailure.emplace();
      return -1;
    }
  }

  void Check(std::int32_t result) const {
    if (fFailure) fFailure->Rethrow();
    if (result == kLQXNoError) return;
    const std::string code = std::to_string(result);
    const std::string message = "the sliced-loop library gave error " + code;
    const NSMordel::CContext context = {{NSMordel::kErrorCode, code}};
    if (result == kLQXUnsupported) throw NSMordel::XUnsupportedFormat(message, context);
    if (result == kLQXReadFailed) throw NSMordel::XRead(message, context);
    if (result == kLQXOutOfMemory) throw NSMordel::NSMordelDetails::XStdBadAlloc(message, context);
    throw XFormatViolation(message, context);
  }

  const CLQXLibrary& fLibrary;
  const IMedia& fMedia;
  std::optional<NSMordel::NSMordelDetails::XTunneledError> fFailure;
  std::unique_ptr<LQXLoop, decltype(&LQXDelete)> fLoop;
};

template <class Function>
void CLQXLibrary::Bind(Function*& function, const char* name) {
  try {
    function = reinterpret_cast<Function*>(fLibrary.Symbol(name));
  } catch (const NSMordel::XNotFound& failure) {
    throw XOpen(failure.Message(), failure.Context());
  }
}

CLQXLibrary::CLQXLibrary(const NativePath& path) : fLibrary(path) {
  Bind(fInitializeDLL, "LQXInitializeDLL");
  Bind(fUninitializeDLL, "LQXUninitializeDLL");
  Bind(fCreate, "LQXCreate");
  Bind(fDelete, "LQXDelete");
  Bind(fGetInfo, "LQXGetInfo");
  Bind(fGetSliceInfo, "LQXGetSliceInfo");
  Bind(fRenderSlice, "LQXRenderSlice");
  const std::int32_t result = fInitializeDLL(LQX_INTERFACE_VERSION);
  if (result != kLQXNoError) {
    const std::string code = std::to_string(result);
    throw XOpen("the library failed to start with error " + code, {{NSMordel::kErrorCode, code}});
  }
}

CLQXLibrary::~CLQXLibrary() { fUninitializeDLL(); }

const char* CLQXLibrary::FileName() {
#if defined(_WIN32)
  return "LQX.dll";
#elif defined(__APPLE__)
  return "libLQX.dylib";
#else
  return "libLQX.so";
#endif
}

std::unique_ptr<CLQXLibrary> CLQXLibrary::Find(const std::optional<NativePath>& option,
                                               const NativePath& programFolder) {
  if (option) return Load(*option, "named by an option");
  if (const auto named = NSTolbrook::PathInEnvironment(kEnvironmentVariable)) {
    return Load(*named, std::string("named by ") + kEnvironmentVariable);
  }
  const NativePath beside = programFolder / FileName();
  if (NSTolbrook::FileStatus(beside, true).fKind == NSTolbrook::EFileKind::kMissing) return nullptr;
  return Load(beside, "beside the program");
}

void CLQXLibrary::Verify(const IMedia& media) const {
  const std::scoped_lock lock(fMutex);
  CLoop loop(*this, media);
  const LQXInfo info = loop.Info();
  std::vector<std::vector<float>> samples(static_cast<std::size_t>(info.channels),
                                          std::vector<float>(kProbeLength));
  std::vector<float*> buffers;
  for (std::vector<float>& channel : samples) buffers.push_back(channel.data());
  for (std::int32_t slice = 0; slice < info.sliceCount; ++slice) {
    const std::int64_t length = loop.SliceInfo(info, slice).length;
    const auto probed = static_cast<std::int32_t>(std::min<std::int64_t>(length, kProbeLength));
    if (probed > 0) loop.Render(slice, probed, buffers);
  }
}

}  // namespace NSTambraPacking
