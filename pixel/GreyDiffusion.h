// Error diffusion of 24-bit rows into four greys (Floyd and Steinberg, 1976), for the surface that
// the window is painted from. Errors are kept in sixteenths, unclamped.
#pragma once

#include "foundation/Allocator.h"

/// The errors that a picture's rows hand down: those of the row that is drawn and of the one below
/// it, each with a cell more on either side, which takes what falls off the row and is not read.
class GreyErrors
{
public:
    explicit GreyErrors(Allocator* allocator);
    ~GreyErrors();
    GreyErrors(const GreyErrors&) = delete;
    GreyErrors& operator=(const GreyErrors&) = delete;

    /// Once. NoMemory.
    [[nodiscard]] i32 Create(u32 columns);
    /// From column 0; column -1 and the one behind the last exist.
    i32* Current() { return current; }
    i32* Next() { return next; }
    /// One row down: the next row's errors become the current ones, and the next ones 0.
    void Advance();

private:
    Allocator* allocator;
    u32 columns;
    i32* block;
    i32* current;
    i32* next;
};

/// Draws a row of the picture into a row of the bitmap that has been cleared, four pixels a byte,
/// the first in the top two bits. Takes one number from Random for each pixel, from the left.
void DiffuseGreyRow(u8* target, const u8* source, u32 columns, const i32* current, i32* next);
