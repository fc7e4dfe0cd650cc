// A library to load before all others (LD_PRELOAD) that makes one call of a program fail (a file
// operation in a folder, or an allocation) or sends it a signal there. So the real program is
// tried, as it is shipped.
//
// Settings come from the environment:
//   FAULT_FOLDER  file operations count when their path lies below this folder
//   FAULT_KIND    EIO, ENOSPC, EACCES, remove, EINTR, short, rename, close, memory, thread; kill,
//                 stop: signals; trace: nothing fails
//   FAULT_AT      the number of the call that fails, from 1; 0: none
//   FAULT_EVER    1: all calls behind it fail, too
//   FAULT_COUNT   a file that gets the number of calls that could have failed
//   FAULT_TRACE   a file that gets a line for each file operation in the folder, written before it
//                 is done (open: behind it): what it is, its descriptor and its paths

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <type_traits>
#include <unistd.h>
#include <utility>

namespace {

/// What a call does, as far as a kind of fault asks.
enum ECall : unsigned {
  kOpen = 1,    // opens or lists what is there
  kCreate = 2,  // makes something
  kRead = 4,
  kWrite = 8,  // takes room on the disk
  kFlush = 16,
  kClose = 32,
  kRename = 64,
  kRemove = 128,
  kStatus = 256,
  kMemory = 512,
  kList = 1024,  // the next item of a folder
  kThread = 2048,
  kLock = 4096,
};

struct CKind {
  const char* fName;
  int fNumber;  ///< errno of the failing call
  unsigned fCalls;
  int fSignal = 0;  ///< sent to the program instead
};

constexpr unsigned kAllFiles = kOpen | kCreate | kRead | kWrite | kFlush | kClose | kRename |
                               kRemove | kStatus | kList | kLock;
constexpr unsigned kTransfer = kRead | kWrite;
constexpr CKind kKinds[] = {
    {"EIO", EIO, kAllFiles & ~kRemove},
    {"ENOSPC", ENOSPC, kCreate | kWrite | kFlush | kRename | kClose},
    {"EACCES", EACCES, kOpen | kCreate | kRename | kStatus},
    {"remove", EACCES, kRemove},
    {"EINTR", EINTR, kOpen | kTransfer | kFlush | kClose | kLock},
    {"short", 0, kTransfer},
    {"rename", EPERM, kRename},
    {"close", EIO, kClose},
    {"trace", 0, kAllFiles},
    {"kill", 0, kAllFiles, SIGKILL},
    {"stop", 0, kAllFiles, SIGINT},
    {"memory", ENOMEM, kMemory},
    {"thread", EAGAIN, kThread},
};

const char* Setting(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// The settings, and what has been counted. Plain data, since allocations come before main.
struct CState {
  CKind fKind{"", 0, 0};
  unsigned long fAt = 0;
  bool fEver = false;
  std::size_t fFolderLength = 0;
  char fFolder[4096] = {};
  std::atomic<unsigned long> fCount = 0;
  std::atomic<bool> fWatched[4096] = {};  ///< by descriptor
  std::atomic<bool> fReady = false;
  int fTrace = -1;
};
CState gState;

/// What the trace calls a call; the others are of no interest there.
const char* NameOf(ECall call) {
  constexpr std::pair<ECall, const char*> kNames[] = {
      {kOpen, "open"},   {kCreate, "create"}, {kRead, "read"},     {kWrite, "write"},
      {kFlush, "flush"}, {kClose, "close"},   {kRename, "rename"}, {kRemove, "remove"}};
  for (const auto& [known, name] : kNames) {
    if (known == call) return name;
  }
  return "other";
}

/// Appends a line to the trace with a call of the system's own, in one piece.
void Trace(ECall call, int descriptor, const char* path = "", const char* second = "") {
  if (gState.fTrace < 0) return;
  char line[9000];
  const int length = std::snprintf(line, sizeof line, "%s\t%d\t%s\t%s\n", NameOf(call), descriptor,
                                   path == nullptr ? "" : path, second);
  ::syscall(SYS_write, gState.fTrace, line, static_cast<size_t>(length));
}

/// Shows where a program broke that should have ended by itself.
void ShowPlace(int signal) {
  void* frames[64];
  ::backtrace_symbols_fd(frames, ::backtrace(frames, 64), STDERR_FILENO);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

__attribute__((constructor)) void Begin() {
  void* frame;
  ::backtrace(&frame, 1);  // its first call loads a library
  for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE}) std::signal(signal, ShowPlace);
  for (const CKind& kind : kKinds) {
    if (std::strcmp(kind.fName, Setting("FAULT_KIND")) == 0) gState.fKind = kind;
  }
  gState.fAt = std::strtoul(Setting("FAULT_AT"), nullptr, 10);
  gState.fEver = *Setting("FAULT_EVER") == '1';
  std::snprintf(gState.fFolder, sizeof gState.fFolder, "%s", Setting("FAULT_FOLDER"));
  gState.fFolderLength = std::strlen(gState.fFolder);
  if (*Setting("FAULT_TRACE") == 0) return;
  gState.fTrace = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, Setting("FAULT_TRACE"),
                                             O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
}

__attribute__((destructor)) void End() {
  const char* const path = Setting("FAULT_COUNT");
  gState.fReady = false;
  if (*path == 0) return;
  if (std::FILE* const file = std::fopen(path, "w")) {
    std::fprintf(file, "%lu\n", gState.fCount.load());
    std::fclose(file);
  }
}

/// Whether this call is the one, or one behind it; kills the program when that is asked.
bool IsHit(ECall call) {
  if (!gState.fReady || (gState.fKind.fCalls & call) == 0) return false;
  const unsigned long number = ++gState.fCount;
  if (gState.fAt == 0 || number < gState.fAt) return false;
  if (number > gState.fAt && !gState.fEver) return false;
  if (gState.fKind.fSignal == 0) return true;
  ::kill(::getpid(), gState.fKind.fSignal);
  return false;
}

bool IsShort() { return gState.fKind.fNumber == 0; }

/// Whether a path lies below the folder, or stands for the program itself; there, at its very
/// beginning, a signal has nothing to disturb.
bool IsBelow(const char* path) {
  if (!gState.fReady || gState.fFolderLength == 0 || path == nullptr) return false;
  return std::strncmp(path, gState.fFolder, gState.fFolderLength) == 0 ||
         (gState.fKind.fSignal == 0 && std::strcmp(path, "/proc/self/exe") == 0);
}

bool IsWatched(int descriptor) {
  return descriptor >= 0 && descriptor < 4096 && gState.fWatched[descriptor];
}

void Watch(int descriptor, bool watched) {
  if (descriptor >= 0 && descriptor < 4096) gState.fWatched[descriptor] = watched;
}

template <class Result>
Result Fail(Result result) {
  errno = gState.fKind.fNumber;
  return result;
}

bool FailsAt(const char* path, ECall call, const char* second = "") {
  if (!IsBelow(path)) return false;
  Trace(call, -1, path, second);
  return IsHit(call);
}
bool FailsAt(int descriptor, ECall call, const char* path = "") {
  if (!IsWatched(descriptor)) return false;
  Trace(call, descriptor, path);
  return IsHit(call);
}

template <class Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// The result of the system's own function, which has the name of this `Function`, or a failure
/// in its place.
template <auto Function, class... Arguments>
auto Pass(const char* name, bool fails, Arguments... arguments) {
  using Result = decltype(Function(arguments...));
  static auto* const next = Next<Result(Arguments...)>(name);
  if constexpr (std::is_pointer_v<Result>) {
    return fails ? Fail<Result>(nullptr) : next(arguments...);
  } else {
    return fails ? Fail<Result>(-1) : next(arguments...);
  }
}

/// The mode is there only when something is made.
int OpenAt(int folder, const char* path, int flags, va_list arguments) {
  const mode_t mode = (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
  static auto* const next = Next<int(int, const char*, int, mode_t)>("openat");
  const bool below = IsBelow(path) || IsWatched(folder);
  if (below && IsHit((flags & O_CREAT) != 0 ? kCreate : kOpen)) return Fail(-1);
  const int descriptor = next(folder, path, flags, mode);
  Watch(descriptor, below);
  if (below) Trace((flags & O_CREAT) != 0 ? kCreate : kOpen, descriptor, path);
  return descriptor;
}

/// A transfer that is cut to one byte, or does not take place.
template <class Transfer>
ssize_t Transferred(int descriptor, size_t length, ECall call, const Transfer& transfer) {
  if (!FailsAt(descriptor, call)) return transfer(length);
  return IsShort() ? transfer(length > 1 ? 1 : length) : Fail<ssize_t>(-1);
}

}  // namespace

extern "C" {

// Nothing fails before the program has begun: what its libraries do there nobody can catch.
int __libc_start_main(int (*main)(int, char**, char**), int count, char** arguments,
                      void (*begin)(), void (*end)(), void (*unload)(), void* stack) {
  static int (*program)(int, char**, char**) = main;
  static auto* const next = Next<decltype(__libc_start_main)>("__libc_start_main");
  const auto start = [](int argumentCount, char** values, char** environment) {
    gState.fReady = true;
    return program(argumentCount, values, environment);
  };
  return next(start, count, arguments, begin, end, unload, stack);
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const int descriptor = OpenAt(AT_FDCWD, path, flags, arguments);
  va_end(arguments);
  return descriptor;
}
int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const int descriptor = OpenAt(folder, path, flags, arguments);
  va_end(arguments);
  return descriptor;
}

int close(int descriptor) {
  const bool fails = FailsAt(descriptor, kClose);
  Watch(descriptor, false);
  const int result = Pass<close>("close", false, descriptor);  // what fails has closed all the same
  return fails ? Fail(-1) : result;
}

ssize_t pread(int descriptor, void* target, size_t length, off_t offset) {
  static auto* const next = Next<ssize_t(int, void*, size_t, off_t)>("pread");
  return Transferred(descriptor, length, kRead,
                     [&](size_t count) { return next(descriptor, target, count, offset); });
}
ssize_t read(int descriptor, void* target, size_t length) {
  static auto* const next = Next<ssize_t(int, void*, size_t)>("read");
  return Transferred(descriptor, length, kRead,
                     [&](size_t count) { return next(descriptor, target, count); });
}
ssize_t pwrite(int descriptor, const void* source, size_t length, off_t offset) {
  static auto* const next = Next<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  return Transferred(descriptor, length, kWrite,
                     [&](size_t count) { return next(descriptor, source, count, offset); });
}
ssize_t write(int descriptor, const void* source, size_t length) {
  static auto* const next = Next<ssize_t(int, const void*, size_t)>("write");
  return Transferred(descriptor, length, kWrite,
                     [&](size_t count) { return next(descriptor, source, count); });
}
ssize_t copy_file_range(int from, off_t* start, int to, off_t* offset, size_t length,
                        unsigned flags) {
  using Function = ssize_t(int, off_t*, int, off_t*, size_t, unsigned);
  static auto* const next = Next<Function>("copy_file_range");
  return Transferred(to, length, kWrite,
                     [&](size_t count) { return next(from, start, to, offset, count, flags); });
}

int ftruncate(int descriptor, off_t size) {
  const bool fails = FailsAt(descriptor, kWrite) && !IsShort();
  return Pass<ftruncate>("ftruncate", fails, descriptor, size);
}
int fallocate(int descriptor, int mode, off_t offset, off_t length) {
  const bool fails = FailsAt(descriptor, kWrite) && !IsShort();
  return Pass<fallocate>("fallocate", fails, descriptor, mode, offset, length);
}
int fsync(int descriptor) { return Pass<fsync>("fsync", FailsAt(descriptor, kFlush), descriptor); }
int fdatasync(int descriptor) {
  return Pass<fdatasync>("fdatasync", FailsAt(descriptor, kFlush), descriptor);
}

int rename(const char* from, const char* to) {
  return Pass<rename>("rename", FailsAt(to, kRename, from), from, to);
}
int renameat(int fromFolder, const char* from, int toFolder, const char* to) {
  const bool fails = FailsAt(to, kRename, from) || FailsAt(toFolder, kRename, to);
  return Pass<renameat>("renameat", fails, fromFolder, from, toFolder, to);
}
int unlink(const char* path) { return Pass<unlink>("unlink", FailsAt(path, kRemove), path); }
int unlinkat(int folder, const char* path, int flags) {
  const bool fails = FailsAt(path, kRemove) || FailsAt(folder, kRemove, path);
  return Pass<unlinkat>("unlinkat", fails, folder, path, flags);
}
int mkdir(const char* path, mode_t mode) {
  return Pass<mkdir>("mkdir", FailsAt(path, kCreate), path, mode);
}
int mkdirat(int folder, const char* path, mode_t mode) {
  const bool fails = FailsAt(path, kCreate) || FailsAt(folder, kCreate, path);
  return Pass<mkdirat>("mkdirat", fails, folder, path, mode);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  const bool fails = FailsAt(to, kCreate, from) || FailsAt(toFolder, kCreate, to);
  return Pass<linkat>("linkat", fails, fromFolder, from, toFolder, to, flags);
}
int flock(int descriptor, int operation) {
  return Pass<flock>("flock", FailsAt(descriptor, kLock), descriptor, operation);
}

ssize_t readlink(const char* path, char* target, size_t length) {
  return Pass<readlink>("readlink", FailsAt(path, kStatus), path, target, length);
}
char* realpath(const char* path, char* target) {
  return Pass<realpath>("realpath", FailsAt(path, kStatus), path, target);
}
int statvfs(const char* path, struct statvfs* status) {
  return Pass<statvfs>("statvfs", FailsAt(path, kStatus), path, status);
}
int fstat(int descriptor, struct stat* status) {
  return Pass<fstat>("fstat", FailsAt(descriptor, kStatus), descriptor, status);
}
int fstatat(int folder, const char* path, struct stat* status, int flags) {
  const bool fails = FailsAt(path, kStatus) || FailsAt(folder, kStatus);
  return Pass<fstatat>("fstatat", fails, folder, path, status, flags);
}
int stat(const char* path, struct stat* status) {
  return Pass<stat>("stat", FailsAt(path, kStatus), path, status);
}

DIR* opendir(const char* path) {
  const bool below = IsBelow(path);
  DIR* const folder = Pass<opendir>("opendir", below && IsHit(kOpen), path);
  if (folder != nullptr) Watch(::dirfd(folder), below);
  return folder;
}
struct dirent* readdir(DIR* folder) {
  return Pass<readdir>("readdir", FailsAt(::dirfd(folder), kList), folder);
}
int closedir(DIR* folder) {
  Watch(::dirfd(folder), false);
  return Pass<closedir>("closedir", false, folder);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                   void* argument) {
  static auto* const next = Next<decltype(pthread_create)>("pthread_create");
  return IsHit(kThread) ? gState.fKind.fNumber : next(thread, attributes, run, argument);
}

// By their other names, since what finds the next function may take memory itself.
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) { return IsHit(kMemory) ? Fail<void*>(nullptr) : __libc_malloc(size); }
void* calloc(size_t count, size_t size) {
  return IsHit(kMemory) ? Fail<void*>(nullptr) : __libc_calloc(count, size);
}
void* realloc(void* block, size_t size) {
  return IsHit(kMemory) ? Fail<void*>(nullptr) : __libc_realloc(block, size);
}
void* aligned_alloc(size_t alignment, size_t size) {
  return IsHit(kMemory) ? Fail<void*>(nullptr) : __libc_memalign(alignment, size);
}

}  // extern "C"
