#pragma once

// Marks what a program outside the library may use; everything else stays hidden in the shared library.
#define ORVXML_API __attribute__((visibility("default")))

// Marks the private members of such a class, which stay hidden with everything else.
#define ORVXML_LOCAL __attribute__((visibility("hidden")))
