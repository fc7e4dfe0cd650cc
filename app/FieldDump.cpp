#include "app/FieldDump.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "package/PackageFormat.h"

namespace NSTambraPacking {

using NSTolbrook::TextFromUtf8;

void CFieldDump::Part(const std::string& name, const std::u16string& value,
                      const std::function<void()>& read) {
  const std::uint64_t start = fCursor.Position();
  CDumpField part{0, fOrigin + start, 0, name, value, {}};
  const auto handOver = [&] {
    part.fSize = fCursor.Position() - start;
    fReport(part);
    HandOver();
  };
  try {
    read();
  } catch (const NSMordel::XRead&) {
    throw;
  } catch (...) {
    handOver();
    throw;
  }
  handOver();
}

void CFieldDump::Range(const std::string& name, std::uint64_t offset, std::uint64_t size,
                       const std::u16string& value) {
  fReport({0, fOrigin + offset, size, name, value, {}});
}

template <class Integer>
Integer CFieldDump::Number(const std::string& name, const char* meaning) {
  std::array<std::uint8_t, sizeof(Integer)> bytes;
  const std::uint64_t start = fCursor.Position();
  if (fCursor.Remaining() < bytes.size()) {
    throw NSMordel::XFormatViolation("the file ends before the field \"" + name + "\" at offset " +
                                     std::to_string(fOrigin + start));
  }
  fCursor.ReadExactly(bytes);
  const auto number = NSTolbrook::LoadBigEndian<Integer>(bytes);
  const std::string text = std::to_string(number);
  Note(name, start, TextFromUtf8(*meaning == '\0' ? text : text + " " + meaning));
  return number;
}

std::uint8_t CFieldDump::U8(const std::string& name, const char* meaning) {
  return Number<std::uint8_t>(name, meaning);
}

std::uint16_t CFieldDump::U16(const std::string& name, const char* meaning) {
  return Number<std::uint16_t>(name, meaning);
}

std::uint32_t CFieldDump::U32(const std::string& name, const char* meaning) {
  return Number<std::uint32_t>(name, meaning);
}

std::uint64_t CFieldDump::U64(const std::string& name, const char* meaning) {
  return Number<std::uint64_t>(name, meaning);
}

std::u16string CFieldDump::Text(const std::string& name) {
  const std::uint64_t start = fCursor.Position();
  std::u16string text = ReadTextField(fCursor);
  Note(name, start, text);
  return text;
}

NSTolbrook::CFormatVersion CFieldDump::Version(const std::string& name) {
  const std::uint64_t start = fCursor.Position();
  const NSTolbrook::CFormatVersion version = NSTolbrook::ReadFormatVersion(fCursor);
  Note(name, start, TextFromUtf8(version.Text()));
  return version;
}

void CFieldDump::Bytes(const std::string& name, std::uint64_t size, const std::u16string& value) {
  const std::uint64_t start = fCursor.Position();
  fCursor.SetPosition(start + std::min(size, fCursor.Remaining()));
  Note(name, start, value);
}

void CFieldDump::Explain(const std::u16string& value) { fPending.back().fValue = value; }

void CFieldDump::Note(const std::string& name, std::uint64_t start, const std::u16string& value) {
  const std::uint64_t size = fCursor.Position() - start;
  CDumpField field{1, fOrigin + start, size, name, value, {}};
  field.fBytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size, kDumpedBytes)));
  NSBigFilePackage::ReadExactly(fCursor.Media(), start, field.fBytes);
  fPending.push_back(std::move(field));
}

void CFieldDump::HandOver() {
  for (const CDumpField& field : fPending) fReport(field);
  fPending.clear();
}

}  // namespace NSTambraPacking
