#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "package/MemoryMedia.h"
#include "tests/support/AudioBuilder.h"
#include "tests/support/DocumentedExample.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;

TEST(DWOPExample, IsMadeAndReadToTheByte) {
  using namespace std::string_literals;
  const std::string source = NSTest::CAudioBuilder::WAVE()
                                 .Format(1, 2, 16)
                                 .Data("\x64\0\x65\0\xFD\xFF\xE8\x03"s)
                                 .Bytes("!");
  const auto stream = std::make_shared<CMemoryMedia>();
  EncodeAudioFile(NSTest::MediaOfBytes(source), EAudioContainer::kWAVE, *stream, {});
  EXPECT_EQ(stream->Bytes(), NSTest::DocumentedExample("dwop.md"));
  CMemoryMedia rebuilt;
  RebuildSource(stream, rebuilt, {});
  EXPECT_EQ(std::string(rebuilt.Bytes().begin(), rebuilt.Bytes().end()), source);
}

}  // namespace
}  // namespace NSTambraPacking
