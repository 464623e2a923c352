// The inner loops of Rows.h for one level of the processor, and the choice among them.
//
// The plain loops are there everywhere and say what is right; the others give the same bytes. They
// are chosen once, by what the processor tells of itself. Rows that overlap are for the plain loops
// alone: the others take several pixels before they put the first one.
#pragma once

#include "pixel/Rows.h"

struct BoxAxis;
struct BoxColumns;
struct BoxRows;
struct StretchColumns;

/// What an instruction set adds to that of every processor.
enum class ProcessorLevel {
    Plain,
    Sse41, // 16 bytes at a time
    Avx2   // 32 bytes at a time
};

/// Each as the function of that name in Rows.h, OrderedDither.h, TextCoverage.h and BoxRow.h says.
struct RowKernels {
    void (*storeRow24)(u8* pixels, size_t count, const ColorBytes& color);
    void (*blendRow24)(u8* pixels, size_t count, const ColorBlend& blend);
    void (*invertRow24)(u8* pixels, size_t count);
    void (*blendMaskRows24)(u8* const* pixels, const u8* const* masks, size_t rows, size_t count,
                            const ColorBytes& color);
    void (*reverseRow24)(u8* pixels, size_t count);
    void (*copyMaskedRow24)(u8* target, const u8* source, const u8* mask, size_t count);
    void (*compositeRow24)(u8* target, const u8* source, size_t count);
    void (*ditherRow)(u8* target, const u8* source, u32 columns, const u8* table, u32 y);
    /// (28 * blue + 151 * green + 77 * red) >> 8 of each pixel.
    void (*lumaRow24)(u16* luma, const u8* source, size_t count);
    void (*blendTextRow)(u8* pixels, const u8* bits, size_t rowBytes, size_t count,
                         const ColorBytes& color);
    /// As PlaceBoxColumns.
    void (*placeColumns)(BoxColumns* columns, const BoxAxis& axis, u32 pixel, u32 count);
    /// Sums of `bytes` bytes from `offset` on, BoxGroups a byte; 0 of no rows.
    void (*sumRows)(u16* sums, const BoxRows& rows, size_t offset, size_t bytes);
    /// `sums` of the columns' tile, each up to 32,767. A pixel whose weights make 0 is left as it
    /// was.
    void (*averageColumns)(u8* out, const u16* sums, const BoxRows& rows,
                           const BoxColumns& columns);
    /// The sum by 4, rounded down, of two pixels of each of two rows becomes one. `out` is no part
    /// of a row.
    void (*halveRows24)(u8* out, const u8* upper, const u8* lower, size_t count);
    /// Four pixels from `column` on of `count` rows, a multiple of 4, become pixels of four rows:
    /// the n-th of source row i comes to targets[n] + 3 * i. Rows do not overlap, and 16 bytes from
    /// `column` on may be read.
    void (*crossFour24)(u8* const* targets, const u8* const* sources, size_t column, size_t count);
    /// The blocks of an enlargement's row; null where none is faster.
    void (*stretchBlocks)(u8* target, const u8* source, const StretchColumns& columns);
};

#if defined(__x86_64__) || defined(__i386__)
extern const RowKernels sse41Rows;
extern const RowKernels avx2Rows;
#endif

/// The kernels of a level; null where the processor or the compiler lacks it.
const RowKernels* KernelsOf(ProcessorLevel level);
/// Those in use: of the highest level that there is, unless another was chosen.
const RowKernels& Kernels();
/// For tests. False, with nothing changed, for a level that is not there.
bool UseLevel(ProcessorLevel level);

/// Whether two runs of bytes have one in common.
inline bool Overlap(const u8* first, size_t firstBytes, const u8* second, size_t secondBytes)
{
    return first < second + secondBytes && second < first + firstBytes;
}
