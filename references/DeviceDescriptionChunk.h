#pragma once

#include <cstdint>
#include <string>

#include "references/ABCFormat.h"

namespace NSTambraPacking {

/// What both device description bodies hold behind the format version: u8 device kind, string
/// device name, string device identifier.
struct CDeviceDescription {
  std::uint8_t fKind = 0;
  /// The name that the list of prohibited devices is compared with.
  std::u16string fName;
  std::u16string fIdentifier;
};

/// The body of a patch's own "DESC" chunk: what device the patch belongs to.
class CSF10DevicePatchDescriptionChunk : public NSTolbrook::CABCFormat {
 public:
  explicit CSF10DevicePatchDescriptionChunk(CDeviceDescription description = {});

  const CDeviceDescription& Description() const { return fDescription; }

 private:
  void ReadBody(NSBigFilePackage::CMediaCursor& input) override;
  void WriteBody(NSBigFilePackage::CMediaCursor& output) const override;

  CDeviceDescription fDescription;
};

/// The body of a "DESC" chunk inside a group of type "DEVL": a device that a song uses. It can only
/// be read: Write throws XIllegalCallSequence "Cannot write CSF10DeviceDescriptionChunk in " and
/// the application's display name, since device descriptions are never rewritten.
class CSF10DeviceDescriptionChunk : public NSTolbrook::CABCFormat {
 public:
  CSF10DeviceDescriptionChunk();

  const CDeviceDescription& Description() const { return fDescription; }

 private:
  void ReadBody(NSBigFilePackage::CMediaCursor& input) override;
  void CheckWritable() const override;
  void WriteBody(NSBigFilePackage::CMediaCursor& output) const override;

  CDeviceDescription fDescription;
};

}  // namespace NSTambraPacking
