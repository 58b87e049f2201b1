#include "desktop/session/ProgramPages.h"

#include <cstdint>
#include <link.h>
#include <unistd.h>

#include <sys/mman.h>

namespace valdrix::desktop {

namespace {

void releaseSegment(std::uintptr_t start, std::uintptr_t end) {
  const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  start &= ~(pageSize - 1);
  // Not written to, so they are read from their file again. Where that is refused they stay.
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader knows segments by their numbers.
  (void)madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
}

int releaseObject(dl_phdr_info* object, std::size_t, void*) {
  for (int i = 0; i < object->dlpi_phnum; ++i) {
    const auto& segment = object->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) continue;
    const std::uintptr_t start = object->dlpi_addr + segment.p_vaddr;
    releaseSegment(start, start + segment.p_filesz);
  }
  return 0;
}

}  // namespace

void releaseProgramPages() { dl_iterate_phdr(releaseObject, nullptr); }

}  // namespace valdrix::desktop
