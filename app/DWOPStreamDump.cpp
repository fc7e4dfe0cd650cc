#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FieldDump.h"
#include "filetypes/dwop/DWOPStreamCheck.h"

namespace NSTambraPacking {

namespace {

const char* LoopName(std::uint8_t mode) {
  switch (static_cast<ELoopMode>(mode)) {
    case ELoopMode::kNone:
      return "0 none";
    case ELoopMode::kForward:
      return "1 forward";
    case ELoopMode::kAlternating:
      return "2 alternating";
  }
  return "";
}

void DumpHeader(CFieldDump& dump) {
  const NSTolbrook::CFormatVersion version = dump.Version("version");
  dump.U32("length", "frames");
  dump.U8("rootkey");
  const std::uint8_t tune = dump.U8("finetune");
  dump.Explain(NSTolbrook::TextFromUtf8(std::to_string(static_cast<std::int8_t>(tune)) + " cents"));
  const char* const loop = LoopName(dump.U8("loopmode"));
  if (*loop != '\0') dump.Explain(NSTolbrook::TextFromUtf8(loop));
  dump.U8("channels");
  dump.U32("loopstart");
  dump.U32("loopend");
  dump.U32("rate", "Hz");
  dump.U8("width", "bits");
  if (version < kDWOPVersionWithFlag) return;
  dump.U32("word1");
  dump.U32("word2");
  dump.U32("flag");
}

void DumpExtraInfo(CFieldDump& dump, const CExtraInfoBlock& block) {
  dump.Cursor().SetPosition(block.fStart);
  dump.Part("extra info", {}, [&] {
    dump.Bytes("begin", 4, u"DwMB");
    dump.Bytes("mark", 4, u"DwTM");
    dump.U32("datalength", "bytes");
    dump.Bytes("data", block.fDataLength, {});
    dump.Bytes("mark", 4, u"DwTM");
    dump.U32("datalength", "bytes");
    dump.Bytes("end", 4, u"DwME");
  });
}

}  // namespace

void DumpDWOPStream(const NSBigFilePackage::SharedMedia& stream, std::uint64_t origin, int depth,
                    const CDumpReport& report, const std::function<void()>& checkStop) {
  const CDumpReport deeper = [&](const CDumpField& field) {
    CDumpField moved = field;
    moved.fDepth += depth;
    report(moved);
  };
  CFieldDump dump(*stream, origin, deeper);
  try {
    dump.Part("stream header", {}, [&] { DumpHeader(dump); });
    const CDWOPStreamParts parts = CheckDWOPStream(*stream, checkStop);
    dump.Range("bit stream", parts.fBitStream, parts.fWords * sizeof(std::uint32_t),
               NSTolbrook::TextFromUtf8(std::to_string(parts.fWords) + " words"));
    if (parts.fExtraInfo) DumpExtraInfo(dump, *parts.fExtraInfo);
  } catch (const NSMordel::XRead&) {
    throw;
  } catch (const NSMordel::XSilentAbort&) {
    throw;
  } catch (const NSMordel::CExceptionBodyMixin& e) {
    const std::uint64_t at = dump.Cursor().Position();
    dump.Range("fault", at, stream->Size() - at, NSTolbrook::TextFromUtf8(e.Message()));
  }
}

}  // namespace NSTambraPacking
