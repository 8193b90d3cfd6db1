#define _GNU_SOURCE /* RTLD_NEXT */
#include "tools/ctl/calls/next_function.h"

#include <dlfcn.h>
#include <errno.h>
#include <stddef.h>
#include <string.h>

static void* symbol_for(const void* caller, const char* name)
{
    Dl_info information;
    if (!dladdr(caller, &information))
        return NULL;
    void* const library = dlopen(information.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    if (!library)
        return NULL;
    void* const symbol = dlsym(library, name);
    dlclose(library); /* stays loaded: it is running */
    return symbol;
}

any_function find_next_function(struct next_function* next, const void* caller)
{
    any_function found = atomic_load(&next->found);
    if (found)
        return found;
    const int error = errno;
    void* symbol = dlsym(RTLD_NEXT, next->name);
    const int may_be_unloaded = !symbol;
    if (!symbol)
        symbol = symbol_for(caller, next->name);
    memcpy(&found, &symbol, sizeof found); /* C cannot convert it to a function pointer */
    if (!may_be_unloaded)
        atomic_store(&next->found, found);
    errno = error;
    return found;
}
