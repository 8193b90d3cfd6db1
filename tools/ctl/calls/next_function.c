#define _GNU_SOURCE /* RTLD_NEXT, dl_iterate_phdr(), _dl_find_object() */
#include "tools/ctl/calls/next_function.h"

#include <dlfcn.h>
#include <errno.h>
#include <limits.h>
#include <link.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

/* Whether the libraries were there when the program started. Those are never unloaded. */
static bool hidapi_stays;
static bool libusb_stays;

__attribute__((constructor)) static void note_libraries(void)
{
    hidapi_stays = dlsym(RTLD_NEXT, "hid_init") != NULL;
    libusb_stays = dlsym(RTLD_NEXT, "libusb_init") != NULL;
}

static const struct link_map* library_of(const void* address)
{
    struct dl_find_object found;
    /* Neither changes nor reads what the address points to. */
    return _dl_find_object((void*)(uintptr_t)address, &found) == 0 ? found.dlfo_link_map : NULL;
}

bool in_same_library(const void* one, const void* other)
{
    const struct link_map* const library = library_of(one);
    return library && library == library_of(other);
}

bool in_this_library(const void* address)
{
    return in_same_library(address, &hidapi_stays);
}

bool in_hidapi(const void* address)
{
    const struct link_map* const library = library_of(address);
    return library && strstr(library->l_name, "/libhidapi");
}

/* Never a wrapper. Null for the program, whose name is empty. */
static void* symbol_in(const char* library_name, const char* name)
{
    void* const library = *library_name ? dlopen(library_name, RTLD_LAZY | RTLD_NOLOAD) : NULL;
    if (!library)
        return NULL;
    void* const symbol = dlsym(library, name);
    dlclose(library); /* stays loaded for those who loaded it */
    return in_this_library(symbol) ? NULL : symbol;
}

static void* symbol_for(const void* caller, const char* name)
{
    const struct link_map* const library = library_of(caller);
    return library ? symbol_in(library->l_name, name) : NULL;
}

struct place {
    size_t skip; /* libraries */
    char name[PATH_MAX];
};

static int copy_name(struct dl_phdr_info* library, size_t size, void* data)
{
    (void)size;
    struct place* const place = data;
    if (place->skip-- > 0)
        return 0;
    snprintf(place->name, sizeof place->name, "%s", library->dlpi_name);
    return 1;
}

/* dlopen() must not be called within dl_iterate_phdr(), so there is one round for each library. */
static void* symbol_in_any_library(const char* name)
{
    void* symbol = NULL;
    struct place place;
    for (size_t i = 0; place.skip = i, !symbol && dl_iterate_phdr(copy_name, &place) != 0; ++i)
        symbol = symbol_in(place.name, name);
    return symbol;
}

any_function find_next_function(struct next_function* next, const void* caller)
{
    any_function found = atomic_load(&next->found);
    if (found)
        return found;
    const int error = errno;
    void* symbol = dlsym(RTLD_NEXT, next->name);
    const bool is_hidapis = strncmp(next->name, "hid_", strlen("hid_")) == 0;
    const bool stays = symbol && (is_hidapis ? hidapi_stays : libusb_stays);
    if (!symbol)
        symbol = symbol_for(caller, next->name);
    if (!symbol)
        symbol = symbol_in_any_library(next->name);
    memcpy(&found, &symbol, sizeof found); /* C cannot convert it to a function pointer */
    if (stays)
        atomic_store(&next->found, found);
    errno = error;
    return found;
}
