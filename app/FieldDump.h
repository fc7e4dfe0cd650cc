#pragma once

#include <span>

#include "Parts/TolbrookPackage/Core/FormatVersion.h"

#include "app/StructureDump.h"

namespace NSTambraPacking {

/// Reads fields in file order and notes each; the fields of a part are handed over behind the part
/// itself, as soon as its length is known. All integers are big-endian.
class CFieldDump {
 public:
  /// The fields' offsets are those in `media` and `origin` more. Both must outlive the dump.
  CFieldDump(NSBigFilePackage::IMedia& media, std::uint64_t origin, const CDumpReport& report)
      : fCursor(media), fOrigin(origin), fReport(report) {}

  NSBigFilePackage::CMediaCursor& Cursor() { return fCursor; }

  /// A part whose fields are read by `read`; what it throws passes, behind the fields before it.
  void Part(const std::string& name, const std::u16string& value,
            const std::function<void()>& read);
  /// A part without fields.
  void Range(const std::string& name, std::uint64_t offset, std::uint64_t size,
             const std::u16string& value);

  /// Each reads a field at the cursor; throws XFormatViolation when it is cut short. The value's
  /// text is the number's own, with `meaning` behind it when there is one.
  std::uint8_t U8(const std::string& name, const char* meaning = "");
  std::uint16_t U16(const std::string& name, const char* meaning = "");
  std::uint32_t U32(const std::string& name, const char* meaning = "");
  std::uint64_t U64(const std::string& name, const char* meaning = "");
  std::u16string Text(const std::string& name);
  NSTolbrook::CFormatVersion Version(const std::string& name);
  /// Bytes that stand for themselves.
  void Bytes(const std::string& name, std::uint64_t size, const std::u16string& value);
  /// Gives the field that was read last another value.
  void Explain(const std::u16string& value);

 private:
  template <class Integer>
  Integer Number(const std::string& name, const char* meaning);
  /// Notes the bytes from `start` to the cursor.
  void Note(const std::string& name, std::uint64_t start, const std::u16string& value);
  void HandOver();

  NSBigFilePackage::CMediaCursor fCursor;
  std::uint64_t fOrigin;
  const CDumpReport& fReport;
  std::vector<CDumpField> fPending;
};

/// The parts of the formats; each throws as the format's reader does.
void DumpPackage(const NSBigFilePackage::SharedMedia& file, const CTextResources& texts,
                 const CDumpReport& report, const std::function<void()>& checkStop);
void DumpBlockStore(const NSBigFilePackage::SharedMedia& file, const CDumpReport& report);
/// `origin` is the stream's offset in the file, `depth` that of its parts.
void DumpDWOPStream(const NSBigFilePackage::SharedMedia& stream, std::uint64_t origin, int depth,
                    const CDumpReport& report, const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
