// The loops of Rows.h, OrderedDither.h, TextCoverage.h and BoxRow.h as they are written down, for
// every processor: what is right. Faster forms give the same bytes, and end their rows by these.
#pragma once

#include "pixel/BoxRow.h"
#include "pixel/Rows.h"

namespace plain
{

void StoreRow24(u8* pixels, size_t count, const ColorBytes& color);
void BlendRow24(u8* pixels, size_t count, const ColorBlend& blend);
void InvertRow24(u8* pixels, size_t count);
void BlendMaskRows24(u8* const* pixels, const u8* const* masks, size_t rows, size_t count,
                     const ColorBytes& color);
void BlendMaskRow32(u8* pixels, const u8* mask, size_t count, const ColorBytes& color);
void ReverseRow24(u8* pixels, size_t count);
void CopyMaskedRow24(u8* target, const u8* source, const u8* mask, size_t count);
void CompositeRow24(u8* target, const u8* source, size_t count);
void CompositeRow32(u8* target, const u8* source, size_t count);
void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y);
void LumaRow24(u16* luma, const u8* source, size_t count);
void BlendTextRow(u8* pixels, const u8* bits, size_t rowBytes, size_t count,
                  const ColorBytes& color);
void PlaceColumns(BoxColumns* columns, const BoxAxis& axis, u32 pixel, u32 count);
void SumRows(u16* sums, const BoxRows& rows, size_t offset, size_t bytes);
void AverageColumns(u8* out, const u16* sums, const BoxRows& rows, const BoxColumns& columns);
void HalveRows24(u8* out, const u8* upper, const u8* lower, size_t count);
void CrossFour24(u8* const* targets, const u8* const* sources, size_t column, size_t count);

} // namespace plain
