#include <optional>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FieldDump.h"
#include "package/BlockDirectory.h"
#include "package/BlockStoreFormat.h"

namespace NSTambraPacking {

namespace {

using namespace NSBigFilePackage;
using namespace NSBlockStoreFormat;
using NSTolbrook::TextFromUtf8;

/// The blocks of a directory without their next indexes, one behind the other.
class CDirectoryBytes : public IMedia {
 public:
  CDirectoryBytes(const CBlockFile& file, const std::vector<std::uint64_t>& chain)
      : fFile(file), fChain(chain) {}

  std::uint64_t PieceSize() const { return fFile.BlockSize() - kNextBlockSize; }
  std::uint64_t Size() const override { return fChain.size() * PieceSize(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    std::size_t done = 0;
    while (done < destination.size() && position < Size()) {
      const auto inPiece = static_cast<std::size_t>(position % PieceSize());
      const auto count = static_cast<std::size_t>(
          std::min<std::uint64_t>(destination.size() - done, PieceSize() - inPiece));
      fFile.ReadPart(fChain[static_cast<std::size_t>(position / PieceSize())],
                     kNextBlockSize + inPiece, destination.subspan(done, count));
      done += count;
      position += count;
    }
    return done;
  }
  void Write(std::uint64_t, std::span<const std::uint8_t>) override { Refuse(); }
  void SetSize(std::uint64_t) override { Refuse(); }
  void Flush() override {}

 private:
  [[noreturn]] static void Refuse() {
    throw NSMordel::XReadOnly("the directory of a block store is only read");
  }

  const CBlockFile& fFile;
  const std::vector<std::uint64_t>& fChain;
};

/// The slot with the greater generation whose directory reads without fault, else the other one.
struct CChosenSlot {
  unsigned fNumber = 0;
  CRootSlot fRoot;
  CStoredDirectory fDirectory;
};

std::optional<CChosenSlot> ChooseSlot(const CBlockFile& file) {
  std::optional<CChosenSlot> chosen;
  for (unsigned number = 0; number < kSlotCount; ++number) {
    const std::optional<CRootSlot> root = file.ReadRootSlot(number);
    if (!root || (chosen && root->fGeneration <= chosen->fRoot.fGeneration)) continue;
    try {
      chosen = CChosenSlot{number, *root, ReadDirectoryChain(file, root->fFirstBlock)};
    } catch (const NSMordel::XFormatViolation&) {
      continue;
    }
  }
  return chosen;
}

void DumpSlots(CFieldDump& dump, const CBlockFile& file, const std::optional<CChosenSlot>& chosen) {
  for (unsigned number = 0; number < kSlotCount; ++number) {
    const bool isChosen = chosen && chosen->fNumber == number;
    dump.Part("root slot", TextFromUtf8(std::to_string(number) + (isChosen ? " in use" : "")), [&] {
      dump.U64("generation");
      dump.U64("first block");
      dump.U16("check value", file.ReadRootSlot(number) ? "right" : "wrong");
    });
  }
}

void DumpDirectory(CFieldDump& dump, const CStoredDirectory& directory) {
  dump.Part("directory", {}, [&] { dump.U32("count", "streams"); });
  for (const auto& stream : directory.fStreams) {
    dump.Part("stream", TextFromUtf8(std::to_string(stream.first)), [&] {
      dump.U32("identifier");
      dump.U64("length", "bytes");
      dump.U64("block count");
      for (std::size_t i = 0; i < stream.second.fBlocks.size(); ++i) dump.U64("block number");
      dump.Bytes("end", kStreamEnd.size(), {});
    });
  }
  dump.Part("directory end", {}, [&] { dump.Bytes("end", kDirectoryEnd.size(), {}); });
}

}  // namespace

void DumpBlockStore(const SharedMedia& file, const CDumpReport& report) {
  CFieldDump dump(*file, 0, report);
  std::uint32_t rootAreaSize = 0;
  dump.Part("file", {}, [&] {
    dump.Bytes("signature", sizeof(kSignature), u"Q27_FILE");
    dump.U32("block size", "bytes");
    rootAreaSize = dump.U32("root area size", "bytes");
  });
  const CBlockFile blocks = CBlockFile::Open(file);
  const std::optional<CChosenSlot> chosen = ChooseSlot(blocks);
  DumpSlots(dump, blocks, chosen);
  if (!chosen) throw NSMordel::XOpen("neither root slot leads to a directory");

  const std::uint64_t firstBlock = kRootAreaOffset + std::uint64_t{rootAreaSize};
  const CStoredDirectory& directory = chosen->fDirectory;
  const auto offsetOf = [&](std::uint64_t block) {
    return firstBlock + block * blocks.BlockSize();
  };
  for (const std::uint64_t block : directory.fChain) {
    dump.Cursor().SetPosition(offsetOf(block));
    dump.Part("directory block", TextFromUtf8(std::to_string(block)), [&] {
      if (dump.U64("next") == kNoBlock) dump.Explain(u"none");
      dump.Bytes("piece", blocks.BlockSize() - kNextBlockSize, {});
    });
  }
  // Its fields may begin in one block and end in another; the offset is where they begin.
  CDirectoryBytes bytes(blocks, directory.fChain);
  const CDumpReport inFile = [&](const CDumpField& field) {
    CDumpField moved = field;
    const std::uint64_t block =
        directory.fChain[static_cast<std::size_t>(field.fOffset / bytes.PieceSize())];
    moved.fOffset = offsetOf(block) + kNextBlockSize + field.fOffset % bytes.PieceSize();
    report(moved);
  };
  CFieldDump directoryDump(bytes, 0, inFile);
  DumpDirectory(directoryDump, directory);
}

}  // namespace NSTambraPacking
