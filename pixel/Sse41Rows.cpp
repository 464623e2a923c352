// The loops on rows for processors with SSE 4.1.

#if defined(__x86_64__) || defined(__i386__)

#include "pixel/BoxRow.h"
#include "pixel/OrderedDither.h"
#include "pixel/PlainRows.h"
#include "pixel/RowKernels.h"
#include "pixel/StretchRow.h"
#include "pixel/TextCoverage.h"
#include "pixel/VectorConstants.h"

#include <algorithm>
#include <immintrin.h>
#include <string.h>

#define VECTOR __attribute__((target("sse4.1")))

namespace
{

#include "pixel/VectorLanes.h"

namespace vector
{

using Lanes = Lanes16;
using Column = Column16;

} // namespace vector

#include "pixel/VectorRows.h"

} // namespace

const RowKernels sse41Rows = vector::vectorRows;

#endif
