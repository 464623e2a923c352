// The library's texts are UTF-8, the device's UTF-16.
#pragma once

#include <tavrix/plugin.h>

#include <stddef.h>

/// As many whole characters of `text` as have room in `capacity` bytes with the final zero. Half a
/// pair becomes U+FFFD. Answers whether all had.
bool ToUtf8(const TavrixChar* text, char* out, size_t capacity);
/// The same the other way round, `capacity` in units of UTF-16.
bool ToWide(const char* text, TavrixChar* out, size_t capacity);
