#include "package/SplashCheck.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::Utf8FromText;

std::u16string LastComponent(const std::u16string& path) {
  const std::size_t slash = path.rfind(u'/');
  return slash == std::u16string::npos ? path : path.substr(slash + 1);
}

[[noreturn]] void RefuseSplash(const char* message, const std::u16string& path,
                               std::int32_t typeCode) {
  NSMordel::CContext context = FileContext(path, typeCode);
  context.emplace_back(kSplashKey, Utf8FromText(LastComponent(path)));
  throw NSMordel::XUnsupportedFormat(message, std::move(context));
}

CPictureSize DecodedSize(const std::u16string& path, std::int32_t typeCode,
                         const NSBigFilePackage::SharedMedia& picture,
                         const IPictureReader& reader) {
  constexpr const char* kMessage = "Splash file format error";
  try {
    return reader.ReadPictureSize(picture);
  } catch (const NSMordel::XFormatViolation&) {
    RefuseSplash(kMessage, path, typeCode);
  } catch (const NSMordel::XUnsupportedFormat&) {
    RefuseSplash(kMessage, path, typeCode);
  }
}

}  // namespace

NSMordel::CContext FileContext(const std::u16string& path, std::int32_t typeCode) {
  return {{NSMordel::kTargetObjectType, "file"},
          {NSMordel::kTargetObjectId, Utf8FromText(path)},
          {kFileNameKey, Utf8FromText(LastComponent(path))},
          {kEntryTypeKey, std::to_string(typeCode)}};
}

void CheckSplashSize(const std::u16string& path, std::int32_t typeCode,
                     const NSBigFilePackage::SharedMedia& picture, const IPictureReader& reader) {
  const CPictureSize size = DecodedSize(path, typeCode, picture, reader);
  if (size.fWidth == kSplashEdge && size.fHeight == kSplashEdge) return;
  RefuseSplash("Splash file size error", path, typeCode);
}

}  // namespace NSTambraPacking
