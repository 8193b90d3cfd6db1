/* The functions that the wrappers of the same names replace. */
#pragma once

#include <stdatomic.h>
#include <stdbool.h>
#include <stdint.h>

typedef void (*any_function)(void);

struct next_function {
    const char* name;
    _Atomic(any_function) found;
};

/* The definition that the program would use without ours: the next one in the order in which
 * libraries are searched. If there is none, that of the library that contains `caller` or of those
 * that it needs: plug-ins can load libraries that only they can use. If there is none either, that
 * of any loaded library: after a tail call, `caller` is the caller of the function that made the
 * call. Null if no library has it. Any thread. Keeps errno. */
any_function find_next_function(struct next_function* next, const void* caller);

/* Whether addresses of functions or return addresses lie in the same library or program, in the one
 * that contains the wrappers, and in hidapi's shared library. Async-signal-safe. */
bool in_same_library(const void* one, const void* other);
bool in_this_library(const void* address);
bool in_hidapi(const void* address);

#define DECLARE_NEXT(function) static struct next_function next_##function = {.name = #function}

/* The function `name`, with its type. NEXT is for wrappers only. */
#define NEXT_FOR(caller, name) ((__typeof__(&name))find_next_function(&next_##name, caller))
#define NEXT(name) NEXT_FOR(CALLER, name)
#define CALLER __builtin_return_address(0)

/* Marks a wrapper. Everything else is compiled with hidden visibility. */
#define EXPORT __attribute__((visibility("default")))
