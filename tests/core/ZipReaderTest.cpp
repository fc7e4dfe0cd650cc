#include <gtest/gtest.h>
#include <memory>
#include <zlib.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ZipReader.h"

#include "package/MemoryMedia.h"
#include "tests/support/Damage.h"

namespace {

using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;
using NSTolbrook::CZipReader;
using Bytes = std::vector<std::uint8_t>;

Bytes Deflate(const Bytes& bytes) {
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY), Z_OK);
  Bytes packed(deflateBound(&stream, static_cast<uLong>(bytes.size())));
  Bytes input = bytes;
  input.push_back(0);  // never an empty pointer
  stream.next_in = input.data();
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = packed.data();
  stream.avail_out = static_cast<uInt>(packed.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

/// Numbers and the bytes that each takes, the lowest first.
using CFields = std::vector<std::pair<std::size_t, int>>;

void Put(Bytes& bytes, const CFields& fields) {
  for (const auto& [value, size] : fields) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

void Append(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

struct CBuiltMember {
  std::string fName;
  Bytes fContent;
  bool fDeflate = false;
  bool fDescriptor = false;  ///< sizes and check value behind the data, zeros before it
};

/// Offsets in the archive that tests damage: of the last member, the directory and the end record.
struct CBuiltZip {
  Bytes fBytes;
  std::size_t fLocal = 0, fData = 0, fEntry = 0, fEnd = 0;
};

CBuiltZip MakeZip(const std::vector<CBuiltMember>& members, const std::string& comment = {}) {
  CBuiltZip zip;
  Bytes directory;
  std::size_t entry = 0;
  for (const auto& [name, content, deflated, descriptor] : members) {
    const Bytes packed = deflated ? Deflate(content) : content;
    const std::size_t check = crc32_z(0, content.data(), content.size());
    const std::size_t flags = descriptor ? 8 : 0, method = deflated ? 8 : 0;
    const CFields sizes = {{check, 4}, {packed.size(), 4}, {content.size(), 4}};
    zip.fLocal = zip.fBytes.size();
    Put(zip.fBytes, {{0x04034B50, 4}, {20, 2}, {flags, 2}, {method, 2}, {0, 4}});
    Put(zip.fBytes, descriptor ? CFields{{0, 8}, {0, 4}} : sizes);
    Put(zip.fBytes, {{name.size(), 2}, {3, 2}});
    Append(zip.fBytes, Bytes(name.begin(), name.end()));
    Append(zip.fBytes, {1, 2, 3});
    zip.fData = zip.fBytes.size();
    Append(zip.fBytes, packed);
    if (descriptor) {
      Put(zip.fBytes, {{0x08074B50, 4}});
      Put(zip.fBytes, sizes);
    }
    entry = directory.size();
    Put(directory, {{0x02014B50, 4}, {20, 2}, {20, 2}, {flags, 2}, {method, 2}, {0, 4}});
    Put(directory, sizes);
    Put(directory, {{name.size(), 2}, {2, 2}, {1, 2}, {0, 8}, {zip.fLocal, 4}});
    Append(directory, Bytes(name.begin(), name.end()));
    Append(directory, {9, 9, 9});
  }
  const std::size_t start = zip.fBytes.size(), count = members.size();
  zip.fEntry = start + entry;
  Append(zip.fBytes, directory);
  zip.fEnd = zip.fBytes.size();
  Put(zip.fBytes, {{0x06054B50, 4}, {0, 4}, {count, 2}, {count, 2}, {directory.size(), 4}});
  Put(zip.fBytes, {{start, 4}, {comment.size(), 2}});
  Append(zip.fBytes, Bytes(comment.begin(), comment.end()));
  return zip;
}

TEST(ZipReader, ReadsStoredAndDeflatedMembers) {
  const Bytes text(100'000, 'x');
  const CBuiltZip zip = MakeZip({{"z/stored", {1, 2, 3}},
                                 {"deflated", text, true},
                                 {"empty", {}},
                                 {"nothing", {}, true},
                                 {"streamed", text, true, true}},
                                std::string("a comment PK\5\6 that looks like an end record"));
  const auto media = std::make_shared<NSBigFilePackage::CMemoryMedia>(zip.fBytes);
  for (const CZipReader& reader : {CZipReader(zip.fBytes), CZipReader(media)}) {
    EXPECT_EQ(reader.Names(),
              (std::vector<std::string>{"deflated", "empty", "nothing", "streamed", "z/stored"}));
    EXPECT_EQ(reader.Read("z/stored"), (Bytes{1, 2, 3}));
    EXPECT_EQ(reader.Read("deflated"), text);
    EXPECT_EQ(reader.Read("streamed", 100'000), text);
    EXPECT_EQ(reader.Read("empty"), Bytes());
    EXPECT_EQ(reader.Read("nothing"), Bytes());
    EXPECT_THROW(reader.Read("Deflated"), NSMordel::XNotFound);
    EXPECT_THROW(reader.Read("deflated", 99'999), XUnsupportedFormat);
  }
  EXPECT_TRUE(CZipReader(MakeZip({}).fBytes).Names().empty());
}

TEST(ZipReader, TellsDamageFromWhatItDoesNotSupport) {
  const CBuiltZip good = MakeZip({{"a", Bytes(500, 7), true}});
  enum EOutcome { kDamaged, kUnsupported };
  const struct {
    const char* fWhat;
    std::size_t fOffset;
    std::vector<std::uint8_t> fBytes;
    EOutcome fOutcome;
  } cases[] = {
      {"encrypted", good.fEntry + 8, {1}, kUnsupported},
      {"another method", good.fEntry + 10, {12}, kUnsupported},
      {"zip64 member", good.fEntry + 24, {255, 255, 255, 255}, kUnsupported},
      {"zip64 offset", good.fEnd + 16, {255, 255, 255, 255}, kUnsupported},
      {"zip64 count", good.fEnd + 8, {255, 255, 255, 255}, kUnsupported},
      {"several parts", good.fEnd + 4, {1}, kUnsupported},
      {"check value", good.fEntry + 16, {0, 0}, kDamaged},
      {"packed size too large", good.fEntry + 20, {0, 0, 0, 0x7F}, kDamaged},
      {"packed size too small", good.fEntry + 20, {3}, kDamaged},
      {"size too small", good.fEntry + 24, {0xF3}, kDamaged},
      {"size too large", good.fEntry + 24, {0xF5}, kDamaged},
      {"size beyond what deflate can give", good.fEntry + 24, {0, 0, 0xFF, 0}, kDamaged},
      {"stored with two sizes", good.fEntry + 10, {0}, kDamaged},
      {"header offset", good.fEntry + 42, {0, 0, 1}, kDamaged},
      {"header signature", good.fLocal, {0}, kDamaged},
      {"another name in the header", good.fLocal + 30, {'b'}, kDamaged},
      {"data", good.fData, {0xFF}, kDamaged},
      {"directory signature", good.fEntry, {0}, kDamaged},
      {"name length", good.fEntry + 28, {0xFF}, kDamaged},
      {"more entries than there are", good.fEnd + 8, {2, 0, 2, 0}, kDamaged},
      {"fewer entries than there are", good.fEnd + 8, {0, 0, 0, 0}, kDamaged},
      {"directory size", good.fEnd + 12, {0xFF, 0xFF}, kDamaged},
      {"end signature", good.fEnd, {0}, kDamaged},
      {"comment length", good.fEnd + 20, {1}, kDamaged},
  };
  for (const auto& [what, offset, bytes, outcome] : cases) {
    SCOPED_TRACE(what);
    Bytes archive = good.fBytes;
    std::copy(bytes.begin(), bytes.end(), archive.begin() + static_cast<long>(offset));
    const auto read = [&archive] { return CZipReader(archive).Read("a"); };
    if (outcome == kUnsupported) {
      EXPECT_THROW(read(), XUnsupportedFormat);
    } else {
      EXPECT_THROW(read(), XFormatViolation);
    }
  }
  EXPECT_THROW(CZipReader(MakeZip({{"a", {1}}, {"a", {2}}}).fBytes), XFormatViolation);
  NSTest::ForEachCut(good.fBytes,
                     [](const Bytes& cut) { EXPECT_THROW(CZipReader{cut}, XFormatViolation); });
}

}  // namespace
