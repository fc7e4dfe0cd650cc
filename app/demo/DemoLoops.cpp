#include "app/demo/DemoLoops.h"

#include "app/demo/DemoBytes.h"
#include "app/demo/DemoChunks.h"
#include "app/demo/DemoSynthesis.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::EByteOrder;
using NSTolbrook::EChunkKind;
using NSTolbrook::MakeFourCharCode;
using Bytes = std::vector<std::uint8_t>;
using CIFFChunks = TDemoChunks<NSTolbrook::CIFFWriter2>;

constexpr std::uint32_t kRate = 44'100;
constexpr CDemoDrum kHits[] = {{170, 48, 220, 20, 0, 1, 60, 21},
                               {1, 1, 0, 180, 256, 1, 20, 22},
                               {280, 185, 90, 150, 180, 1, 50, 23},
                               {1, 1, 0, 150, 256, 1, 40, 24}};

struct CLoopRow {
  const char16_t* fPath;
  std::uint32_t fTempo;  ///< quarter notes a minute
  std::size_t fSlices;
};

constexpr CLoopRow kLoops[] = {{u"Loops/Beat 120.lqx", 120, 4},
                               {u"Loops/Beat 96 – gerade.lq2", 96, 4},
                               {u"Loops/ループ 140.lqx2", 140, 3},
                               {u"Loops/Alter Beat.qzl", 110, 2}};

CDemoBytes Big() { return CDemoBytes(EByteOrder::kBigEndian); }

Bytes Slice(std::uint32_t number, std::uint32_t frames) {
  const CDemoDrum& hit = kHits[number % std::size(kHits)];
  CDemoBytes samples = Big();
  for (const std::int32_t sample : MakeDrum(hit, kRate, frames)) {
    samples.Add(static_cast<std::uint16_t>(sample >> 8));
  }
  CIFFChunks slice;
  slice.Chunk(MakeFourCharCode("SLCE"), Big().Add(number * frames).Add(frames).Zeros(3).Bytes());
  slice.Chunk(MakeFourCharCode("SDAT"), samples.Bytes());
  return slice.Take();
}

Bytes Loop(const CLoopRow& row) {
  const std::uint32_t frames = kRate * 60 / (row.fTempo * 4);
  CIFFChunks slices;
  for (std::uint32_t i = 0; i < row.fSlices; ++i) {
    slices.Group(EChunkKind::kForm, MakeFourCharCode("SLIC"), Slice(i, frames));
  }
  CIFFChunks loop;
  const auto count = static_cast<std::uint16_t>(row.fSlices);
  loop.Chunk(MakeFourCharCode("HEAD"), Big().Add(row.fTempo).Add(kRate).Add(count).Bytes());
  loop.Group(EChunkKind::kList, MakeFourCharCode("SLCL"), slices.Take());
  loop.Chunk(MakeFourCharCode("NOTE"), Big().Text("stand-in for a sliced loop").Zeros(1).Bytes());
  return CIFFChunks().Group(EChunkKind::kCatalogue, MakeFourCharCode("LQXF"), loop.Take()).Take();
}

}  // namespace

DemoFiles MakeDemoLoops() {
  DemoFiles files;
  for (const CLoopRow& row : kLoops) files.push_back({row.fPath, Loop(row)});
  return files;
}

}  // namespace NSTambraPacking
