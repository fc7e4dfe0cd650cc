#include "Parts/TolbrookPackage/Core/ZipReader.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <zlib.h>

#include "Parts/TolbrookPackage/Core/CheckedBytes.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/StdException.h"

namespace NSTolbrook {

namespace {

using Buffer = std::vector<std::uint8_t>;
using NSBigFilePackage::IMedia;
using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;

constexpr std::uint32_t kLocalSignature = 0x04034B50;
constexpr std::uint32_t kDirectorySignature = 0x02014B50;
constexpr std::uint32_t kEndSignature = 0x06054B50;
constexpr std::size_t kLocalSize = 30;
constexpr std::size_t kDirectorySize = 46;
constexpr std::size_t kEndSize = 22;
constexpr std::size_t kLongestComment = 0xFFFF;
constexpr std::uint16_t kNarrowMark = 0xFFFF;    ///< the real value stands in a zip64 record
constexpr std::uint32_t kWideMark = 0xFFFFFFFF;  ///< likewise
constexpr std::uint16_t kEncryptedFlag = 1;
constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;
/// Deflate codes at most 258 bytes in two bits.
constexpr std::uint64_t kGreatestDeflateRatio = 1032;

/// Bytes in memory as a media that cannot be written.
class CSpanMedia : public IMedia {
 public:
  explicit CSpanMedia(std::span<const std::uint8_t> bytes) : fBytes(bytes) {}
  std::uint64_t Size() const override { return fBytes.size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    if (position >= fBytes.size()) return 0;
    const auto rest = fBytes.subspan(static_cast<std::size_t>(position));
    const std::size_t count = std::min(rest.size(), destination.size());
    std::copy_n(rest.begin(), count, destination.begin());
    return count;
  }
  void Write(std::uint64_t, std::span<const std::uint8_t>) override { Refuse(); }
  void SetSize(std::uint64_t) override { Refuse(); }
  void Flush() override {}

 private:
  [[noreturn]] static void Refuse() { throw NSMordel::XReadOnly("a zip archive is only read"); }

  std::span<const std::uint8_t> fBytes;
};

/// The bytes must lie before `end`, so that no header can ask for more memory than the file has.
Buffer ReadPart(const IMedia& archive, std::uint64_t offset, std::uint64_t size,
                std::uint64_t end) {
  if (offset > end || size > end - offset) {
    throw XFormatViolation("a part of the zip archive lies outside it: " + std::to_string(size) +
                           " bytes at offset " + std::to_string(offset));
  }
  Buffer bytes(static_cast<std::size_t>(size));
  NSBigFilePackage::ReadExactly(archive, offset, bytes);
  return bytes;
}

struct CEndRecord {
  std::uint64_t fOffset = 0;
  Buffer fBytes;
};

/// The last record whose comment reaches exactly to the end of the archive.
CEndRecord FindEndRecord(const IMedia& archive) {
  const std::uint64_t size = archive.Size();
  const std::uint64_t start = size - std::min<std::uint64_t>(size, kEndSize + kLongestComment);
  const Buffer tail = ReadPart(archive, start, size - start, size);
  const CCheckedBytes bytes(tail, "the zip archive");
  for (std::size_t behind = tail.size() < kEndSize ? 0 : tail.size() - kEndSize + 1; behind > 0;) {
    const std::size_t offset = --behind;
    if (bytes.Integer<std::uint32_t>(offset) != kEndSignature) continue;
    const std::size_t commentLength = bytes.Integer<std::uint16_t>(offset + 20);
    if (offset + kEndSize + commentLength != tail.size()) continue;
    const auto record = bytes.Part(offset, kEndSize);
    return {start + offset, Buffer(record.begin(), record.end())};
  }
  throw XFormatViolation("the file is no zip archive or its end is missing");
}

Buffer Inflate(Buffer& packed, std::size_t size) {
  // One byte more than expected shows a stream that goes on too long.
  Buffer bytes(size + 1);
  z_stream stream{};
  constexpr int kRawDeflate = -15;
  if (::inflateInit2(&stream, kRawDeflate) != Z_OK) {
    throw NSMordel::NSMordelDetails::XStdBadAlloc("no memory to unpack a zip member");
  }
  const std::unique_ptr<z_stream, decltype(&::inflateEnd)> close(&stream, ::inflateEnd);
  stream.next_in = packed.data();
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = bytes.data();
  stream.avail_out = static_cast<uInt>(bytes.size());
  const int result = ::inflate(&stream, Z_FINISH);
  if (result == Z_MEM_ERROR) {
    throw NSMordel::NSMordelDetails::XStdBadAlloc("no memory to unpack a zip member");
  }
  if (result != Z_STREAM_END || stream.avail_in != 0 || stream.total_out != size) {
    throw XFormatViolation("a zip member's deflated data is damaged");
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace

CZipReader::CZipReader(NSBigFilePackage::SharedMedia archive) : fArchive(std::move(archive)) {
  const CEndRecord end = FindEndRecord(*fArchive);
  const CCheckedBytes record(end.fBytes, "the end record");
  const auto disk = record.Integer<std::uint16_t>(4);
  const auto directoryDisk = record.Integer<std::uint16_t>(6);
  const auto countHere = record.Integer<std::uint16_t>(8);
  const auto count = record.Integer<std::uint16_t>(10);
  const auto size = record.Integer<std::uint32_t>(12);
  const auto offset = record.Integer<std::uint32_t>(16);
  if (count == kNarrowMark || size == kWideMark || offset == kWideMark) {
    throw XUnsupportedFormat("a zip archive in zip64 form");
  }
  if (disk != 0 || directoryDisk != 0 || countHere != count) {
    throw XUnsupportedFormat("a zip archive in several parts");
  }
  if (std::uint64_t{offset} + size > end.fOffset) {
    throw XFormatViolation("the zip archive's directory runs past its end record");
  }
  fDirectoryOffset = offset;
  ReadDirectory(size, count);
}

CZipReader::CZipReader(std::span<const std::uint8_t> archive)
    : CZipReader(std::make_shared<CSpanMedia>(archive)) {}

void CZipReader::ReadDirectory(std::uint32_t size, std::uint32_t count) {
  const Buffer buffer = ReadPart(*fArchive, fDirectoryOffset, size, fArchive->Size());
  const CCheckedBytes directory(buffer, "the zip archive's directory");
  std::uint64_t offset = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const CCheckedBytes entry(directory.Part(offset, kDirectorySize), "a directory entry");
    if (entry.Integer<std::uint32_t>(0) != kDirectorySignature) {
      throw XFormatViolation("an entry of the zip archive's directory lacks its signature");
    }
    const CMember member{entry.Integer<std::uint16_t>(8),  entry.Integer<std::uint16_t>(10),
                         entry.Integer<std::uint32_t>(16), entry.Integer<std::uint32_t>(20),
                         entry.Integer<std::uint32_t>(24), entry.Integer<std::uint32_t>(42)};
    const auto nameLength = entry.Integer<std::uint16_t>(28);
    const auto name = directory.Part(offset + kDirectorySize, nameLength);
    if (!fMembers.emplace(std::string(name.begin(), name.end()), member).second) {
      throw XFormatViolation("a name comes twice in the zip archive's directory");
    }
    offset += kDirectorySize + std::uint64_t{nameLength} + entry.Integer<std::uint16_t>(30) +
              entry.Integer<std::uint16_t>(32);
  }
  if (offset != size) throw XFormatViolation("the zip archive's directory has another size");
}

std::vector<std::string> CZipReader::Names() const {
  std::vector<std::string> names;
  names.reserve(fMembers.size());
  for (const auto& [name, member] : fMembers) names.push_back(name);
  return names;
}

Buffer CZipReader::Read(std::string_view name, std::uint32_t limit) const {
  const auto found = fMembers.find(name);
  if (found == fMembers.end()) {
    throw NSMordel::XNotFound("the zip archive has no such member",
                              {{NSMordel::kTargetObjectId, std::string(name)}});
  }
  const CMember& member = found->second;
  if ((member.fFlags & kEncryptedFlag) != 0) throw XUnsupportedFormat("an encrypted zip member");
  if (std::max({member.fPackedSize, member.fSize, member.fHeaderOffset}) == kWideMark) {
    throw XUnsupportedFormat("a zip member in zip64 form");
  }
  if (member.fMethod != kStored && member.fMethod != kDeflated) {
    throw XUnsupportedFormat("a zip member packed by method " + std::to_string(member.fMethod));
  }
  if (member.fSize > limit) {
    throw XUnsupportedFormat("a zip member of " + std::to_string(member.fSize) +
                             " bytes is larger than " + std::to_string(limit));
  }
  const std::uint64_t greatest =
      member.fMethod == kStored ? member.fPackedSize : kGreatestDeflateRatio * member.fPackedSize;
  if (member.fSize > greatest || (member.fMethod == kStored && member.fSize != greatest)) {
    throw XFormatViolation("a zip member's sizes contradict each other");
  }
  Buffer bytes = ReadPacked(found->first, member);
  if (member.fMethod == kDeflated) bytes = Inflate(bytes, member.fSize);
  if (::crc32_z(0, bytes.data(), bytes.size()) != member.fCheckValue) {
    throw XFormatViolation("a zip member's check value is wrong");
  }
  return bytes;
}

Buffer CZipReader::ReadPacked(const std::string& name, const CMember& member) const {
  const Buffer fixed = ReadPart(*fArchive, member.fHeaderOffset, kLocalSize, fDirectoryOffset);
  const CCheckedBytes header(fixed, "a zip member's header");
  const std::uint64_t nameOffset = member.fHeaderOffset + std::uint64_t{kLocalSize};
  const auto nameLength = header.Integer<std::uint16_t>(26);
  const Buffer localName = ReadPart(*fArchive, nameOffset, nameLength, fDirectoryOffset);
  if (header.Integer<std::uint32_t>(0) != kLocalSignature ||
      !std::ranges::equal(localName, name, [](std::uint8_t left, char right) {
        return left == static_cast<std::uint8_t>(right);
      })) {
    throw XFormatViolation("a zip member's header does not match the directory");
  }
  const std::uint64_t dataOffset = nameOffset + nameLength + header.Integer<std::uint16_t>(28);
  return ReadPart(*fArchive, dataOffset, member.fPackedSize, fDirectoryOffset);
}

}  // namespace NSTolbrook
