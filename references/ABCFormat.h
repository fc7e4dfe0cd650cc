#pragma once

#include <string>

#include "Parts/TolbrookPackage/Core/FormatVersion.h"
#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTolbrook {

/// Base of the chunk bodies that begin with a format version.
class CABCFormat {
 public:
  virtual ~CABCFormat() = default;

  /// Reads the version and then the body from `input`, whose media must end where the chunk's data
  /// ends. Bytes behind what this version of the body holds are left unread. Throws
  /// XFormatViolation, XVersionTooNew for a later major version and XVersionTooOld for major 0.
  void Read(NSBigFilePackage::CMediaCursor& input);

  /// Writes the version 1.0.0 and the body.
  void Write(NSBigFilePackage::CMediaCursor& output) const;

 protected:
  /// `documentKind` completes "A newer Ostrum version is needed to read this …".
  explicit CABCFormat(std::string documentKind);
  CABCFormat(const CABCFormat&) = default;
  CABCFormat& operator=(const CABCFormat&) = default;

 private:
  virtual void ReadBody(NSBigFilePackage::CMediaCursor& input) = 0;
  /// Called before anything is written; a body that cannot be written throws here.
  virtual void CheckWritable() const {}
  virtual void WriteBody(NSBigFilePackage::CMediaCursor& output) const = 0;

  std::string fDocumentKind;
};

/// The strings of a chunk body: a u32 count of bytes, big-endian, and the bytes (UTF-8) without
/// terminator. Reading throws XFormatViolation, before memory is taken, when fewer bytes remain or
/// more than `greatestLength` are announced.
std::string ReadBodyString(NSBigFilePackage::CMediaCursor& input, std::size_t greatestLength);
void WriteBodyString(NSBigFilePackage::CMediaCursor& output, const std::string& text);

/// Integers of a chunk body, big-endian. Throw XFormatViolation where the body ends too early.
std::uint8_t ReadBodyByte(NSBigFilePackage::CMediaCursor& input);
std::uint32_t ReadBodyNumber(NSBigFilePackage::CMediaCursor& input);
void WriteBodyByte(NSBigFilePackage::CMediaCursor& output, std::uint8_t value);
void WriteBodyNumber(NSBigFilePackage::CMediaCursor& output, std::uint32_t value);

}  // namespace NSTolbrook
