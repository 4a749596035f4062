// Marks a variable or function that several sources of the library share and no host may see.
#ifndef QV_DISPATCH_HIDDEN_H
#define QV_DISPATCH_HIDDEN_H

// -fvisibility=hidden covers definitions only: an `extern` declaration without this mark is still
// reached through the global offset table, one load more on every use.
#if defined(__ELF__)
#define QV_HIDDEN __attribute__((visibility("hidden")))
#else
#define QV_HIDDEN
#endif

#endif
