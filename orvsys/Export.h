#pragma once

// Marks what libOrvSys shows to its users; everything else in it is compiled with hidden visibility.
#if defined(__GNUC__)
#define ORVSYS_API __attribute__((visibility("default")))
#else
#define ORVSYS_API
#endif
