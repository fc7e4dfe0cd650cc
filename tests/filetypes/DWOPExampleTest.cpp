#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "package/MemoryMedia.h"
#include "tests/support/AudioBuilder.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;

/// The bytes of the example in the format's page: between an offset and ";" on each line.
std::vector<std::uint8_t> DocumentedExample() {
  std::ifstream page(TAMBRA_TEST_DATA "/../../docs/formats/dwop.md");
  std::vector<std::uint8_t> bytes;
  std::string line;
  while (std::getline(page, line) && line != "```") continue;
  while (std::getline(page, line) && line != "```") {
    std::istringstream text(line.substr(0, line.find(';')));
    std::string token;
    if (!(text >> token)) continue;
    EXPECT_EQ(std::stoul(token, nullptr, 16), bytes.size()) << line;
    while (text >> token) bytes.push_back(static_cast<std::uint8_t>(std::stoi(token, nullptr, 16)));
  }
  return bytes;
}

TEST(DWOPExample, IsMadeAndReadToTheByte) {
  using namespace std::string_literals;
  const std::string source = NSTest::CAudioBuilder::WAVE()
                                 .Format(1, 2, 16)
                                 .Data("\x64\0\x65\0\xFD\xFF\xE8\x03"s)
                                 .Bytes("!");
  const auto stream = std::make_shared<CMemoryMedia>();
  EncodeAudioFile(NSTest::MediaOfBytes(source), EAudioContainer::kWAVE, *stream, {});
  EXPECT_EQ(stream->Bytes(), DocumentedExample());
  CMemoryMedia rebuilt;
  RebuildSource(stream, rebuilt, {});
  EXPECT_EQ(std::string(rebuilt.Bytes().begin(), rebuilt.Bytes().end()), source);
}

}  // namespace
}  // namespace NSTambraPacking
