#pragma once

// Marks what libOrvSys shows to its users; everything else in it is compiled with hidden visibility. ORVSYS_LOCAL hides
// a private member of a class that is shown.
#if defined(__GNUC__)
#define ORVSYS_API __attribute__((visibility("default")))
#define ORVSYS_LOCAL __attribute__((visibility("hidden")))
#else
#define ORVSYS_API
#define ORVSYS_LOCAL
#endif
