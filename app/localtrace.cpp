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
    // The results are ignored deliberately. A rejected copy or append leaves the path unchanged. If
    // RKB_HOME is unset or too long, the path is "/logs/kxhost.log". If only the file's name does
    // not fit, the path is the home directory, which cannot be opened for writing.
    char path[kPathSize] = {};
    static_cast<void>(rkb::strcpy_s(path, sizeof path, std::getenv("RKB_HOME")));
    static_cast<void>(rkb::strcat_s(path, sizeof path, "/logs/kxhost.log"));
    if (std::FILE* file = std::fopen(path, "w"))
        std::fclose(file);
}
