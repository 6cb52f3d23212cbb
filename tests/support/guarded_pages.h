/* Memory whose end is the end of what may be touched: a read or write behind it ends the program. */
#ifndef TQUI_TESTS_GUARDED_PAGES_H
#define TQUI_TESTS_GUARDED_PAGES_H

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>

#include "settings/driver_devmode.h"

/* A page and a page behind it that cannot be touched. */
class GuardedPages {
  public:
    GuardedPages()
    {
        pPages = static_cast<u8*>(
            mmap(nullptr, 2 * PAGE_BYTES, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (pPages == MAP_FAILED || mprotect(pPages + PAGE_BYTES, PAGE_BYTES, PROT_NONE) != 0) {
            std::abort();
        }
    }
    ~GuardedPages() { munmap(pPages, 2 * PAGE_BYTES); }

    /* The first cb bytes of the record, the last of them the last that may be touched. */
    DriverDevmode* Place(const DriverDevmode& record, size_t cb)
    {
        u8* pAt = pPages + PAGE_BYTES - cb;
        std::memcpy(pAt, &record, cb);
        return reinterpret_cast<DriverDevmode*>(pAt);
    }

  private:
    static constexpr size_t PAGE_BYTES = 4096;
    u8* pPages;
};

#endif
