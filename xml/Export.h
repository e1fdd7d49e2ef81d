#pragma once

// Marks what a program outside the library may use; everything else stays hidden in the shared library.
#define ORVXML_API __attribute__((visibility("default")))
