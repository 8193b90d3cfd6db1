#include "app/localtrace.h"

#include "base/src/safe_c/safe_c.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr size_t kPathSize = 256; // with the terminator

constinit CLocalTrace localTrace;

} // namespace

constinit KX::TraceSettings KX::traceSettings{&localTrace};

void CLocalTrace::TraceRecord(uint32_t, uint32_t, const char*, size_t) { }

void CLocalTrace::Reset()
{
    // A home that is unset or too long leaves a path that does not open, or the file in the root
    // directory: both are meant, so the results are not looked at.
    char path[kPathSize] = {};
    static_cast<void>(rkb::strcpy_s(path, sizeof path, std::getenv("RKB_HOME")));
    static_cast<void>(rkb::strcat_s(path, sizeof path, "/logs/kxhost.log"));
    if (std::FILE* file = std::fopen(path, "w"))
        std::fclose(file);
}
