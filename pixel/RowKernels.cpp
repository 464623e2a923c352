#include "pixel/RowKernels.h"

#include "pixel/PlainRows.h"

#include <initializer_list>

namespace
{

const RowKernels plainRows = {
    plain::StoreRow24,     plain::BlendRow24,      plain::InvertRow24,    plain::BlendMaskRows24,
    plain::ReverseRow24,   plain::CopyMaskedRow24, plain::CompositeRow24, plain::DitherRow,
    plain::LumaRow24,      plain::BlendTextRow,    plain::PlaceColumns,   plain::SumRows,
    plain::AverageColumns, plain::HalveRows24,     plain::CrossFour24,    nullptr};

const RowKernels* Highest()
{
    for (const ProcessorLevel level : {ProcessorLevel::Avx2, ProcessorLevel::Sse41})
        if (const RowKernels* kernels = KernelsOf(level))
            return kernels;
    return &plainRows;
}

const RowKernels* inUse = Highest();

} // namespace

const RowKernels* KernelsOf(ProcessorLevel level)
{
#if defined(__x86_64__) || defined(__i386__)
    if (level == ProcessorLevel::Sse41)
        return __builtin_cpu_supports("sse4.1") ? &sse41Rows : nullptr;
    if (level == ProcessorLevel::Avx2)
        return __builtin_cpu_supports("avx2") ? &avx2Rows : nullptr;
#endif
    return level == ProcessorLevel::Plain ? &plainRows : nullptr;
}

const RowKernels& Kernels()
{
    return *inUse;
}

bool UseLevel(ProcessorLevel level)
{
    const RowKernels* kernels = KernelsOf(level);
    if (kernels == nullptr)
        return false;
    inUse = kernels;
    return true;
}
