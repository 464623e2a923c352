// Integers and floating point of fixed width, for fields and arguments whose width is part of a
// contract.
#pragma once

#include <stdint.h>

using u8 = uint8_t;
using u16 = uint16_t;
using u32 = uint32_t;
using u64 = uint64_t;
using i32 = int32_t;
using i64 = int64_t;
using f64 = double;
