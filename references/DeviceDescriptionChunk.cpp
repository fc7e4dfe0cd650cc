#include "references/DeviceDescriptionChunk.h"

#include <optional>

#include "Parts/TolbrookPackage/Core/ApplicationName.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;

/// Bytes that a device's name or identifier may have.
constexpr std::size_t kGreatestNameLength = 65536;

std::u16string ReadName(CMediaCursor& input) {
  auto name =
      NSTolbrook::StrictTextFromUtf8(NSTolbrook::ReadBodyString(input, kGreatestNameLength));
  if (name) return *std::move(name);
  throw NSMordel::XFormatViolation("a device description holds a string that is not UTF-8");
}

CDeviceDescription ReadDescription(CMediaCursor& input) {
  CDeviceDescription description;
  description.fKind = NSTolbrook::ReadBodyByte(input);
  description.fName = ReadName(input);
  description.fIdentifier = ReadName(input);
  return description;
}

}  // namespace

CSF10DevicePatchDescriptionChunk::CSF10DevicePatchDescriptionChunk(CDeviceDescription description)
    : CABCFormat("patch"), fDescription(std::move(description)) {}

void CSF10DevicePatchDescriptionChunk::ReadBody(CMediaCursor& input) {
  fDescription = ReadDescription(input);
}

void CSF10DevicePatchDescriptionChunk::WriteBody(CMediaCursor& output) const {
  NSTolbrook::WriteBodyByte(output, fDescription.fKind);
  NSTolbrook::WriteBodyString(output, NSTolbrook::StrictUtf8FromText(fDescription.fName));
  NSTolbrook::WriteBodyString(output, NSTolbrook::StrictUtf8FromText(fDescription.fIdentifier));
}

CSF10DeviceDescriptionChunk::CSF10DeviceDescriptionChunk() : CABCFormat("device") {}

void CSF10DeviceDescriptionChunk::ReadBody(CMediaCursor& input) {
  fDescription = ReadDescription(input);
}

void CSF10DeviceDescriptionChunk::CheckWritable() const {
  throw NSMordel::XIllegalCallSequence(std::string("Cannot write CSF10DeviceDescriptionChunk in ") +
                                       NSTolbrook::kApplicationDisplayName);
}

void CSF10DeviceDescriptionChunk::WriteBody(CMediaCursor&) const { CheckWritable(); }

}  // namespace NSTambraPacking
