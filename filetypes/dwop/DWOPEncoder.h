#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "codecs/SamplePacking.h"
#include "filetypes/dwop/DWOPBitWriter.h"
#include "filetypes/dwop/DWOPForm.h"
#include "filetypes/dwop/DWOPLaneCoder.h"
#include "filetypes/dwop/DWOPLanes.h"
#include "filetypes/dwop/SpareRoom.h"

namespace NSTambraPacking {

/// The memory of an encoder.
struct CDWOPEncoderRoom {
  std::array<std::uint8_t, CDWOPBitWriter::kRoomLength> fOutput;
  CDWOPLaneCoder fLanes;
};

/// Codes samples into the residual bit stream at the cursor, which must outlive the encoder. All
/// functions throw as Write of the cursor's media.
class CDWOPEncoder {
 public:
  /// `channels` is 1 or 2, else XFormatViolation. `form` must be one that can run here.
  CDWOPEncoder(NSBigFilePackage::CMediaCursor& output, unsigned channels,
               EDWOPForm form = FastestDWOPForm());

  /// Codes whole frames, left before right; the predictors go on from the last call. The bits do
  /// not depend on how the frames are spread over calls, but the speed does: some thousand frames
  /// and more a call are coded best.
  void Encode(std::span<const std::int32_t> interleaved);
  void Encode(std::span<const std::int16_t> interleaved);
  void Encode(ESamplePacking packing, std::span<const std::uint8_t> interleaved);

  /// Completes the last word and writes what is buffered; nothing may be coded after it.
  void Finish();

 private:
  CSpareRoom<CDWOPEncoderRoom> fRoom;
  CDWOPBitWriter fWriter;
  unsigned fChannels;
  EDWOPForm fForm;
  /// The left channel (or the only one), and the difference of right and left.
  std::array<CDWOPEncodeState, 2> fStates;
};

}  // namespace NSTambraPacking
