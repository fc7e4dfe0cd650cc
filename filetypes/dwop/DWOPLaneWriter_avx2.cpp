#include "filetypes/dwop/DWOPLaneStages.h"

namespace NSTambraPacking {

namespace {

using CVector = __m256i;

[[gnu::always_inline]] inline CVector All(int value) { return _mm256_set1_epi32(value); }

/// Appends units: what is to be stored, and where.
[[gnu::always_inline]] inline void Append(CLaneWriters& writers, CVector code, CVector length,
                                          CVector* word, CVector* place) {
  const CVector bits = _mm256_add_epi64(writers.fBegunBits, length);
  const CVector shift = _mm256_sub_epi64(_mm256_set1_epi64x(64), bits);
  const CVector joined = _mm256_or_si256(writers.fBegun, _mm256_sllv_epi64(code, shift));
  const CVector highestFirst = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8));
  *word = _mm256_shuffle_epi8(joined, highestFirst);
  *place = writers.fPlace;
  const CVector within = _mm256_set1_epi64x(7);
  writers.fBegun = _mm256_sllv_epi64(joined, _mm256_andnot_si256(within, bits));
  writers.fBegunBits = _mm256_and_si256(within, bits);
  writers.fPlace = _mm256_add_epi64(writers.fPlace, _mm256_srli_epi64(bits, 3));
}

/// Stores 8 bytes in each lane; those behind the begun byte are overwritten by the next store.
[[gnu::always_inline]] inline void Store(const CVector& word, const CVector& place) {
  const auto* words = reinterpret_cast<const long long*>(&word);
  const auto* places = reinterpret_cast<const long long*>(&place);
  for (int lane = 0; lane < 4; ++lane) {
    const long long bytes = words[lane];
    __builtin_memcpy(reinterpret_cast<void*>(places[lane]), &bytes, sizeof(bytes));
  }
}

/// One lane's writer, for units that are too long for Append.
struct CLaneWriter {
  std::uint8_t* fPlace;
  std::uint64_t fBegun;
  unsigned fBegunBits;

  /// `count` is 1 to kMostLaneUnitBits.
  void Put(std::uint64_t code, unsigned count) {
    const unsigned bits = fBegunBits + count;
    const std::uint64_t joined = fBegun | code << (64 - bits);
    const std::uint64_t stored = __builtin_bswap64(joined);
    __builtin_memcpy(fPlace, &stored, sizeof(stored));
    fPlace += bits / 8;
    fBegun = bits == 64 ? 0 : joined << (bits & ~7u);
    fBegunBits = bits & 7;
  }

  void PutResidual(std::uint32_t z, std::uint32_t m) {
    for (; z / m >= 7; m *= 4) {
      Put(0, 7);
      z -= 7 * m;
    }
    const std::uint32_t quotient = z / m;
    const std::uint32_t remainder = z - quotient * m;
    const unsigned topBit = 31 - static_cast<unsigned>(__builtin_clz(m));
    const std::uint64_t code = remainder + (std::uint64_t{1} << topBit);
    const std::uint64_t limit = (std::uint64_t{3} << topBit) - m;
    const bool isLong = code >= limit;
    Put(isLong ? code + limit : code, quotient + topBit + 1 + (isLong ? 1 : 0));
  }
};

/// Writes the chunk's unit of one lane of 64 bits from its two values.
template <unsigned Channels>
void PutUnit(CLaneWriter& writer, const CLaneChunk& chunk, std::size_t unit, std::size_t group,
             std::size_t lane) {
  const std::size_t frame = Channels == 2 ? unit : 2 * unit;
  for (std::size_t i = 0; i < 2; ++i) {
    const std::size_t row = Channels == 2 ? frame : frame + i;
    const std::size_t column = 2 * lane + (Channels == 2 ? i : group);
    writer.PutResidual(reinterpret_cast<const std::uint32_t*>(&chunk.fZigzag[row])[column],
                       reinterpret_cast<const std::uint32_t*>(&chunk.fModulus[row])[column]);
  }
}

/// Units of which some are too long.
template <unsigned Channels>
void WriteLongUnits(CLaneWriters& writers, const CLaneChunk& chunk, std::size_t group,
                    std::size_t firstUnit, std::size_t units) {
  alignas(32) std::uint64_t places[4];
  alignas(32) std::uint64_t begun[4];
  alignas(32) std::uint64_t begunBits[4];
  _mm256_store_si256(reinterpret_cast<CVector*>(places), writers.fPlace);
  _mm256_store_si256(reinterpret_cast<CVector*>(begun), writers.fBegun);
  _mm256_store_si256(reinterpret_cast<CVector*>(begunBits), writers.fBegunBits);
  for (std::size_t lane = 0; lane < 4; ++lane) {
    CLaneWriter writer{reinterpret_cast<std::uint8_t*>(places[lane]), begun[lane],
                       static_cast<unsigned>(begunBits[lane])};
    for (std::size_t unit = 0; unit < units; ++unit) {
      const std::size_t at = firstUnit + unit;
      const auto length = reinterpret_cast<const std::uint64_t*>(&chunk.fLength[at])[lane];
      if (length <= kMostLaneUnitBits) {
        writer.Put(reinterpret_cast<const std::uint64_t*>(&chunk.fCode[at])[lane],
                   static_cast<unsigned>(length));
      } else {
        PutUnit<Channels>(writer, chunk, unit, group, lane);
      }
    }
    places[lane] = reinterpret_cast<std::uint64_t>(writer.fPlace);
    begun[lane] = writer.fBegun;
    begunBits[lane] = writer.fBegunBits;
  }
  writers.fPlace = _mm256_load_si256(reinterpret_cast<const CVector*>(places));
  writers.fBegun = _mm256_load_si256(reinterpret_cast<const CVector*>(begun));
  writers.fBegunBits = _mm256_load_si256(reinterpret_cast<const CVector*>(begunBits));
}

bool IsAbove(CVector lengths, int limit) {
  const CVector above = _mm256_cmpgt_epi32(lengths, All(limit));
  return !_mm256_testz_si256(above, above);
}

/// Stage 3: appends units; two at a time where all pairs of the chunk fit.
template <unsigned Channels>
void WriteUnits(CLaneWriters& writers, const CLaneChunk& chunk, std::size_t group,
                std::size_t firstUnit, std::size_t units) {
  if (IsAbove(chunk.fLongest, kMostLaneUnitBits)) {
    return WriteLongUnits<Channels>(writers, chunk, group, firstUnit, units);
  }
  const CVector* codes = chunk.fCode + firstUnit;
  const CVector* lengths = chunk.fLength + firstUnit;
  CVector words[kDWOPLaneChunk];
  CVector places[kDWOPLaneChunk];
  CLaneWriters state = writers;
  std::size_t stores = 0;
  if (IsAbove(chunk.fLongestPair, kMostLaneUnitBits)) {
    for (; stores < units; ++stores) {
      Append(state, codes[stores], lengths[stores], words + stores, places + stores);
    }
  } else {
    for (; 2 * stores < units; ++stores) {
      const CVector second = lengths[2 * stores + 1];
      const CVector code =
          _mm256_or_si256(_mm256_sllv_epi64(codes[2 * stores], second), codes[2 * stores + 1]);
      Append(state, code, _mm256_add_epi64(lengths[2 * stores], second), words + stores,
             places + stores);
    }
  }
  writers = state;
  for (std::size_t i = 0; i < stores; ++i) Store(words[i], places[i]);
}

}  // namespace

void WriteLanes(unsigned channels, std::size_t frames, const CLaneChunk& chunk,
                CLaneWriters* writers) {
  if (channels == 2) return WriteUnits<2>(writers[0], chunk, 0, 0, frames);
  WriteUnits<1>(writers[0], chunk, 0, 0, frames / 2);
  WriteUnits<1>(writers[1], chunk, 1, kDWOPLaneChunk / 2, frames / 2);
}

}  // namespace NSTambraPacking
