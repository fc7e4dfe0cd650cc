/*
 * A sliced-loop library over a trivial format. The file, all bytes:
 *   0 "LQXT"   4 version, 1   5 channels   6 slices, times 65536 with flag 128
 *   7 flags: 1 describes slice 1 with error 77, 2 renders slice 1 with error kLQXDamaged,
 *     4 ignores a failed read, 8 puts slice 1 behind the loop's end
 *   8 length of each slice in frames
 *   9 one byte for each slice, the value of its samples (read when the slice is rendered)
 */
#include <stdlib.h>
#include <string.h>

#include "codecs/LQXHost.h"

#ifdef _WIN32
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

enum { kHeader = 9 };

struct LQXLoop {
  LQXReadProc read;
  void* user;
  uint8_t header[kHeader];
};

static int32_t sOpen = 0;

/* Loops created and not yet deleted; -1 when the library is not initialised. */
static int32_t sInitialized = 0;
EXPORTED int32_t StandInOpenLoops(void);
int32_t StandInOpenLoops(void) { return sInitialized ? sOpen : -1; }

EXPORTED int32_t LQXInitializeDLL(int32_t interfaceVersion) {
#ifdef LQX_STANDIN_FAILING
  (void)interfaceVersion;
  return 99;
#else
  if (interfaceVersion != LQX_INTERFACE_VERSION) return kLQXUnsupported;
  sInitialized = 1;
  return kLQXNoError;
#endif
}

EXPORTED void LQXUninitializeDLL(void) { sInitialized = 0; }

EXPORTED int32_t LQXCreate(LQXReadProc read, void* user, int64_t size, LQXHandle* loop) {
  struct LQXLoop opened = {read, user, {0}};
  if (!sInitialized) return kLQXBadArgument;
  if (size < kHeader) return kLQXDamaged;
  int32_t got = read(user, 0, opened.header, kHeader);
  if (got < 0) return kLQXReadFailed;
  if (got != kHeader || memcmp(opened.header, "LQXT", 4) != 0) return kLQXDamaged;
  if (opened.header[4] != 1) return kLQXUnsupported;
  *loop = malloc(sizeof opened);
  if (*loop == NULL) return kLQXOutOfMemory;
  **loop = opened;
  ++sOpen;
  return kLQXNoError;
}

EXPORTED void LQXDelete(LQXHandle loop) {
  free(loop);
  --sOpen;
}

static int32_t SliceCount(LQXHandle loop) {
  return (loop->header[7] & 0x80) != 0 ? loop->header[6] * 65536 : loop->header[6];
}

EXPORTED int32_t LQXGetInfo(LQXHandle loop, LQXInfo* info) {
  info->channels = loop->header[5];
  info->sampleRate = 44100;
  info->sliceCount = SliceCount(loop);
  info->tempo = 120000;
  info->length = (int64_t)info->sliceCount * loop->header[8];
  return kLQXNoError;
}

EXPORTED int32_t LQXGetSliceInfo(LQXHandle loop, int32_t slice, LQXSliceInfo* info) {
  if (slice < 0 || slice >= SliceCount(loop)) return kLQXBadArgument;
  if (slice == 1 && (loop->header[7] & 1) != 0) return 77;
  info->length = loop->header[8];
  info->position = (int64_t)slice * info->length;
  if (slice == 1 && (loop->header[7] & 8) != 0) info->position = INT64_MAX;
  return kLQXNoError;
}

#ifndef LQX_STANDIN_INCOMPLETE
EXPORTED int32_t LQXRenderSlice(LQXHandle loop, int32_t slice, int32_t frameCount,
                                float* const* buffers) {
  uint8_t value = 0;
  if (slice == 1 && (loop->header[7] & 2) != 0) return kLQXDamaged;
  int32_t got = loop->read(loop->user, kHeader + slice, &value, 1);
  if (got < 0 && (loop->header[7] & 4) == 0) return kLQXReadFailed;
  if (got == 0) return kLQXDamaged;
  for (int channel = 0; channel < loop->header[5]; ++channel) {
    for (int32_t i = 0; i < frameCount; ++i) buffers[channel][i] = (float)value / 255;
  }
  return kLQXNoError;
}
#endif
