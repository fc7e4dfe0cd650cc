#include "filetypes/dwop/DWOPHeader.h"

#include <cstddef>
#include <span>
#include <string>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSMordel::XFormatViolation;

/// Bytes of each field in file order; the same list serves writing and reading.
template <class Header, class Handler>
void ForEachField(Header& header, Handler&& handle) {
  handle(header.fLength);
  handle(header.fRootKey);
  handle(header.fFineTune);
  handle(header.fLoopMode);
  handle(header.fChannels);
  handle(header.fLoopStart);
  handle(header.fLoopEnd);
  handle(header.fRate);
  handle(header.fWidth);
}

bool HasVersion2Fields(const CDWOPHeader& header) {
  return header.fVersion >= kDWOPVersionWithFlag;
}

void CheckVersion(const NSTolbrook::CFormatVersion& version) {
  const std::string text = "a DWOP stream has version " + version.Text() +
                           "; the major version can be " + std::to_string(kOldestDWOPMajor) +
                           " to " + std::to_string(kNewestDWOPMajor);
  if (version.fMajor < kOldestDWOPMajor) throw NSMordel::XVersionTooOld(text);
  if (version.fMajor > kNewestDWOPMajor) throw NSMordel::XVersionTooNew(text);
}

void CheckFields(const CDWOPHeader& header) {
  if (header.fChannels != 1 && header.fChannels != 2) {
    throw XFormatViolation("a DWOP stream has " + std::to_string(header.fChannels) + " channels");
  }
  if (header.fWidth != 16 && header.fWidth != 24) {
    throw XFormatViolation("a DWOP stream has samples of " + std::to_string(header.fWidth) +
                           " bits");
  }
}

template <std::size_t Length>
std::array<std::uint8_t, Length> ReadPart(CMediaCursor& input) {
  std::array<std::uint8_t, Length> bytes;
  if (input.Remaining() < Length) throw XFormatViolation("a DWOP header is cut short");
  input.ReadExactly(bytes);
  return bytes;
}

}  // namespace

void WriteDWOPHeader(CMediaCursor& output, const CDWOPHeader& header) {
  CheckFields(header);
  std::array<std::uint8_t, kDWOPFieldsLength + kDWOPVersion2FieldsLength> bytes{};
  std::size_t length = 0;
  const auto store = [&bytes, &length](auto value) {
    NSTolbrook::StoreBigEndian(std::span(bytes).subspan(length), value);
    length += sizeof(value);
  };
  ForEachField(header, store);
  if (HasVersion2Fields(header)) {
    for (const std::uint32_t word : header.fVersion2Words) store(word);
    store(std::uint32_t{header.fVersion2Flag});
  }
  NSTolbrook::WriteFormatVersion(output, header.fVersion);
  output.Write(std::span(bytes).first(length));
}

CDWOPHeader ReadDWOPHeader(CMediaCursor& input) {
  CDWOPHeader header;
  header.fVersion = NSTolbrook::ReadFormatVersion(input);
  CheckVersion(header.fVersion);
  const auto bytes = ReadPart<kDWOPFieldsLength>(input);
  std::size_t offset = 0;
  ForEachField(header, [&bytes, &offset](auto& field) {
    using Field = std::remove_reference_t<decltype(field)>;
    field = NSTolbrook::LoadBigEndian<Field>(std::span(bytes).subspan(offset));
    offset += sizeof(Field);
  });
  CheckFields(header);
  if (HasVersion2Fields(header)) {
    const std::array<std::uint8_t, kDWOPVersion2FieldsLength> more =
        ReadPart<kDWOPVersion2FieldsLength>(input);
    const auto word = [&more](std::size_t index) {
      return NSTolbrook::LoadBigEndian<std::uint32_t>(std::span(more).subspan(index * 4));
    };
    header.fVersion2Words = {word(0), word(1)};
    header.fVersion2Flag = word(2) != 0;
  }
  return header;
}

}  // namespace NSTambraPacking
