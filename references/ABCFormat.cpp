#include "references/ABCFormat.h"

#include <array>
#include <limits>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTolbrook {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSMordel::XFormatViolation;

constexpr std::uint32_t kSupportedMajor = 1;

void ReadPart(CMediaCursor& input, std::span<std::uint8_t> bytes) {
  if (input.Remaining() < bytes.size()) {
    throw XFormatViolation("a chunk body ends at offset " +
                           std::to_string(input.Position() + input.Remaining()) +
                           ", in the middle of a value");
  }
  input.ReadExactly(bytes);
}

}  // namespace

CABCFormat::CABCFormat(std::string documentKind) : fDocumentKind(std::move(documentKind)) {}

void CABCFormat::Read(CMediaCursor& input) {
  const CFormatVersion version = ReadFormatVersion(input);
  if (version.fMajor > kSupportedMajor) {
    throw NSMordel::XVersionTooNew("A newer Ostrum version is needed to read this " +
                                   fDocumentKind);
  }
  if (version.fMajor < kSupportedMajor) {
    throw NSMordel::XVersionTooOld("The version " + version.Text() + " of this " + fDocumentKind +
                                   " is not supported");
  }
  ReadBody(input);
}

void CABCFormat::Write(CMediaCursor& output) const {
  CheckWritable();
  WriteFormatVersion(output, CFormatVersion{});
  WriteBody(output);
}

std::string ReadBodyString(CMediaCursor& input, std::size_t greatestLength) {
  const std::uint32_t length = ReadBodyNumber(input);
  if (length > input.Remaining()) {
    throw XFormatViolation("a string of " + std::to_string(length) +
                           " bytes runs past the end of its chunk");
  }
  if (length > greatestLength) {
    throw XFormatViolation("a string of " + std::to_string(length) + " bytes is longer than the " +
                           std::to_string(greatestLength) + " allowed");
  }
  std::string text(length, '\0');
  input.ReadExactly(std::span(reinterpret_cast<std::uint8_t*>(text.data()), text.size()));
  return text;
}

void WriteBodyString(CMediaCursor& output, const std::string& text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw XFormatViolation("a string does not fit its 32-bit length");
  }
  WriteBodyNumber(output, static_cast<std::uint32_t>(text.size()));
  output.Write(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

std::uint8_t ReadBodyByte(CMediaCursor& input) {
  std::uint8_t value = 0;
  ReadPart(input, std::span(&value, 1));
  return value;
}

std::uint32_t ReadBodyNumber(CMediaCursor& input) {
  std::array<std::uint8_t, sizeof(std::uint32_t)> bytes{};
  ReadPart(input, bytes);
  return LoadBigEndian<std::uint32_t>(bytes);
}

void WriteBodyByte(CMediaCursor& output, std::uint8_t value) { output.Write(std::span(&value, 1)); }

void WriteBodyNumber(CMediaCursor& output, std::uint32_t value) {
  std::array<std::uint8_t, sizeof(value)> bytes{};
  StoreBigEndian(std::span<std::uint8_t>(bytes), value);
  output.Write(bytes);
}

}  // namespace NSTolbrook
