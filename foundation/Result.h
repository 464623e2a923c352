// The one result convention of the system. An operation that can fail returns a signed 32-bit
// number: positive for success, 0 for "nothing done and no fault", negative for a failure. Callers
// test `< 0`, or `< 1` where 0 counts as failure too, and never `== Done` unless an operation says
// that it returns nothing else.
#pragma once

#include "foundation/Types.h"

enum : i32 {
    Added = 3,    // a property list took a new entry
    Replaced = 5, // a property list replaced an entry
    Done = 1,
    NothingDone = 0,  // already so, nothing open, timed out, not found, end reached
    Failed = -1,      // the general failure
    NoMemory = -2,    // an allocation failed, or the allocator is missing
    WrongState = -3,  // the object has not been set up
    BadArgument = -4, // a required pointer is null or a required count is zero
    NoSuchName = -10, // a property list has no entry of that name
    RecordTooSmall = -98,
    UnknownType = -99, // a variant of a type that does not exist
    NotConvertible = -100,
    NoStorage = -101 // a line could not be moved out to its paging file
};

/// A short English text for a result, for logs and test output. Never null.
const char* ResultText(i32 result);
