#include "tests/hostile/FaultyImports.h"

#include <dirent.h>
#include <dlfcn.h>
#include <elf.h>
#include <errno.h>
#include <link.h>
#include <poll.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <new>
#include <utility>

#include "tests/hostile/FaultyImport.h"

namespace Hostile {

namespace {

// The loader's tables of a library: the names of its symbols, and the places that hold
// their addresses.
struct Tables {
  const ElfW(Sym) * symbols = nullptr;
  const char* names = nullptr;
  struct {
    const ElfW(Rela) * first = nullptr;
    std::size_t bytes = 0;
  } slots[2];
};

Tables TablesOf(const link_map& map) {
  Tables tables;
  for (const ElfW(Dyn)* entry = map.l_ld; entry->d_tag != DT_NULL; ++entry) {
    const ElfW(Addr) address = entry->d_un.d_ptr;
    switch (entry->d_tag) {
      case DT_SYMTAB:
        tables.symbols = reinterpret_cast<const ElfW(Sym)*>(address);
        break;
      case DT_STRTAB:
        tables.names = reinterpret_cast<const char*>(address);
        break;
      case DT_JMPREL:
        tables.slots[0].first = reinterpret_cast<const ElfW(Rela)*>(address);
        break;
      case DT_PLTRELSZ:
        tables.slots[0].bytes = entry->d_un.d_val;
        break;
      case DT_RELA:
        tables.slots[1].first = reinterpret_cast<const ElfW(Rela)*>(address);
        break;
      case DT_RELASZ:
        tables.slots[1].bytes = entry->d_un.d_val;
        break;
      default:
        break;
    }
  }
  return tables;
}

// The loader may have made the page read-only.
void* Exchange(void** slot, void* value) {
  const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::uintptr_t page = reinterpret_cast<std::uintptr_t>(slot) & ~(pageSize - 1);
  if (mprotect(reinterpret_cast<void*>(page), pageSize, PROT_READ | PROT_WRITE) != 0) std::abort();
  return std::exchange(*slot, value);
}

}  // namespace

void* ReplaceImport(void* library, const char* name, void* replacement) {
  link_map* map = nullptr;
  if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0) std::abort();
  const Tables tables = TablesOf(*map);
  void* before = nullptr;
  for (const auto& slots : tables.slots) {
    const ElfW(Rela)* const end = slots.first + slots.bytes / sizeof *slots.first;
    for (const ElfW(Rela)* slot = slots.first; slot != end; ++slot) {
      const auto symbol = ELF64_R_SYM(slot->r_info);
      if (symbol == 0) continue;
      if (std::strcmp(tables.names + tables.symbols[symbol].st_name, name) != 0) continue;
      before = Exchange(reinterpret_cast<void**>(map->l_addr + slot->r_offset), replacement);
    }
  }
  return before;
}

void SetReason(int reason) noexcept {
  errno = reason;
}

namespace {

// Only writes to files fail. Events also use write, and their writes cannot fail.
ssize_t Write(int descriptor, const void* data, std::size_t length) {
  struct stat state {};
  const bool isFile = fstat(descriptor, &state) == 0 && S_ISREG(state.st_mode);
  if (!isFile || !g_faultSwitch.Strikes(Fault::Files)) return write(descriptor, data, length);
  return errno = ENOSPC, -1;
}

void* Allocate(std::size_t bytes) {
  if (g_faultSwitch.Strikes(Fault::Memory)) throw std::bad_alloc();
  return ::operator new(bytes);
}

void* AllocateArray(std::size_t bytes) {
  if (g_faultSwitch.Strikes(Fault::Memory)) throw std::bad_alloc();
  return ::operator new[](bytes);
}

time_t Time(time_t*) {
  return time(nullptr) + g_faultSwitch.epochShiftSeconds;
}

int ClockGetTime(clockid_t clock, timespec* now) {
  constexpr long kMsPerSecond = 1'000;
  constexpr long kNsPerMs = 1'000'000;
  const int failed = clock_gettime(clock, now);
  if (clock == CLOCK_MONOTONIC) {
    const std::int64_t ms = now->tv_sec * kMsPerSecond + now->tv_nsec / kNsPerMs +
                            static_cast<std::int64_t>(g_faultSwitch.tickShiftMs);
    now->tv_sec = ms / kMsPerSecond;
    now->tv_nsec = ms % kMsPerSecond * kNsPerMs;
  } else {
    now->tv_sec += g_faultSwitch.localShiftSeconds;
  }
  return failed;
}

template <class Function>
void Put(void* library, const char* name, Function* function) {
  ReplaceKnownImport(library, name, reinterpret_cast<void*>(function));
}

void PutSockets(void* library) {
  constexpr Fault kFault = Fault::Sockets;
  FaultyImport<"socket", kFault, -1, EMFILE, int(int, int, int)>::PutInto(library);
  FaultyImport<"connect", kFault, -1, ECONNREFUSED, int(int, const sockaddr*, socklen_t)>::PutInto(
      library);
  FaultyImport<"send", kFault, -1, ECONNRESET,
               ssize_t(int, const void*, std::size_t, int)>::PutInto(library);
  FaultyImport<"recv", kFault, -1, ECONNRESET, ssize_t(int, void*, std::size_t, int)>::PutInto(
      library);
  FaultyImport<"poll", kFault, -1, ENOMEM, int(pollfd*, nfds_t, int)>::PutInto(library);
}

// "open" has a third argument whenever it may create the file, as it always may
// here.
void PutFiles(void* library) {
  constexpr Fault kFault = Fault::Files;
  FaultyImport<"stat", kFault, -1, EACCES, int(const char*, struct stat*)>::PutInto(library);
  FaultyImport<"mkdir", kFault, -1, EROFS, int(const char*, mode_t)>::PutInto(library);
  FaultyImport<"open", kFault, -1, EROFS, int(const char*, int, mode_t)>::PutInto(library);
  FaultyImport<"unlink", kFault, -1, EROFS, int(const char*)>::PutInto(library);
  FaultyImport<"fstat", kFault, -1, EIO, int(int, struct stat*)>::PutInto(library);
  FaultyImport<"opendir", kFault, 0, EACCES, DIR*(const char*)>::PutInto(library);
  FaultyImport<"statx", kFault, -1, EACCES,
               int(int, const char*, int, unsigned, struct statx*)>::PutInto(library);
  Put(library, "write", &Write);
}

void PutThreads(void* library) {
  FaultyImport<"eventfd", Fault::Threads, -1, EMFILE, int(unsigned, int)>::PutInto(library);
  FaultyImport<"pthread_create", Fault::Threads, EAGAIN, EAGAIN,
               int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>::PutInto(library);
}

// The names are those of the image: operator new and new[], with and without nothrow.
void PutMemory(void* library) {
  using NoThrowNew = void*(std::size_t, const std::nothrow_t&);
  FaultyImport<"malloc", Fault::Memory, 0, ENOMEM, void*(std::size_t)>::PutInto(library);
  FaultyImport<"_ZnwmRKSt9nothrow_t", Fault::Memory, 0, ENOMEM, NoThrowNew>::PutInto(library);
  Put(library, "_Znwm", &Allocate);
  Put(library, "_Znam", &AllocateArray);
}

void PutClocks(void* library) {
  Put(library, "time", &Time);
  Put(library, "clock_gettime", &ClockGetTime);
}

}  // namespace

void PutFaultyImports(void* library) {
  PutSockets(library);
  PutFiles(library);
  PutThreads(library);
  PutMemory(library);
  PutClocks(library);
}

}  // namespace Hostile
