// What a shared library shows: everything else in it is built with hidden visibility.
#pragma once

#if defined(__GNUC__) && !defined(__GXX_RTTI)
#error "velmora asks for types at run time: leave out -fno-rtti"
#endif

/// Stands before the classes and functions that a user of the library may name. Exceptions are
/// caught by type across libraries, so their classes need it as well.
#if defined(__GNUC__)
#define VELMORA_EXPORT __attribute__((visibility("default")))
#else
#define VELMORA_EXPORT
#endif
