/*
 * Text literals in the contract's character type, for sources that compile for either of its
 * widths: 16 bits by type here, the compiler's wide character on the device itself. With the
 * device's <windows.h>, TEXT is the same.
 */
#ifndef TAVRIX_TEXT_H
#define TAVRIX_TEXT_H

#include <tavrix/plugin.h>

#ifdef _WIN32
#define TAVRIX_TEXT(literal) L##literal
#else
#define TAVRIX_TEXT(literal) u##literal
#endif

#endif
