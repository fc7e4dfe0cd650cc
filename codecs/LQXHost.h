/*
 * The programming interface of the host's shared library for sliced-loop files (LQX), as a program
 * that loads the library at run time calls it. Plain C. Calls come from one thread at a time.
 *
 * Order of calls: LQXInitializeDLL once; for each file LQXCreate, any of LQXGetInfo,
 * LQXGetSliceInfo and LQXRenderSlice, LQXDelete; LQXUninitializeDLL once at the end.
 */
#ifndef TAMBRA_CODECS_LQXHOST_H
#define TAMBRA_CODECS_LQXHOST_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Asked for in LQXInitializeDLL; a library that does not know it answers kLQXUnsupported. */
#define LQX_INTERFACE_VERSION 1

/* Results. A library may give further codes, all of them failures. */
enum {
  kLQXNoError = 0,
  kLQXDamaged = 1,     /* the file breaks its format */
  kLQXUnsupported = 2, /* a format, version or feature that the library does not know */
  kLQXReadFailed = 3,  /* the read callback failed */
  kLQXOutOfMemory = 4,
  kLQXBadArgument = 5
};

/* An opened file. */
typedef struct LQXLoop* LQXHandle;

/*
 * Fetches `count` bytes (above 0) of the file from `position` (from 0 on) into `destination`.
 * Returns the number of bytes, fewer than `count` only where the file ends; negative when reading
 * failed, which the library answers by giving up the call with kLQXReadFailed.
 */
typedef int32_t (*LQXReadProc)(void* user, int64_t position, uint8_t* destination, int32_t count);

typedef struct LQXInfo {
  int32_t channels;
  int32_t sampleRate; /* frames a second */
  int32_t sliceCount;
  int32_t tempo;  /* thousandths of a beat a minute; 0 when the file has none */
  int64_t length; /* frames */
} LQXInfo;

typedef struct LQXSliceInfo {
  int64_t position; /* of the first frame, in frames from the loop's start */
  int64_t length;   /* frames */
} LQXSliceInfo;

int32_t LQXInitializeDLL(int32_t interfaceVersion);
void LQXUninitializeDLL(void);

/*
 * Opens a file of `size` bytes. `read` and `user` are used until LQXDelete. `*loop` is set only
 * when the result is kLQXNoError.
 */
int32_t LQXCreate(LQXReadProc read, void* user, int64_t size, LQXHandle* loop);
void LQXDelete(LQXHandle loop);

int32_t LQXGetInfo(LQXHandle loop, LQXInfo* info);

/* `slice` counts from 0. */
int32_t LQXGetSliceInfo(LQXHandle loop, int32_t slice, LQXSliceInfo* info);

/*
 * Decodes the first `frameCount` frames of a slice (not more than its length). `buffers` has one
 * pointer for each channel, to `frameCount` values each; full scale is -1 to 1.
 */
int32_t LQXRenderSlice(LQXHandle loop, int32_t slice, int32_t frameCount, float* const* buffers);

#ifdef __cplusplus
}
#endif

#endif
