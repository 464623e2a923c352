#include "standard-plugins/common/scaling/ZimgPass.h"

#include <stdlib.h>

namespace
{

// What the library demands of addresses and of the distance between lines.
constexpr size_t alignment = 64;
constexpr double lanczosLobes = 3;
// Of the cubics by B and C that Catmull-Rom is one of: a of Keys is -C.
constexpr double catmullRomB = 0;
constexpr double catmullRomC = 0.5;

size_t Aligned(size_t bytes)
{
    return (bytes + alignment - 1) & ~(alignment - 1);
}

zimg_image_format FormatOf(const ZimgLibrary& library, ZimgSize size)
{
    zimg_image_format format;
    library.formatDefault(&format, ZIMG_API_VERSION);
    format.width = size.width;
    format.height = size.height;
    format.pixel_type = ZIMG_PIXEL_FLOAT;
    format.color_family = ZIMG_COLOR_RGB;
    format.matrix_coefficients = ZIMG_MATRIX_RGB;
    return format;
}

// The whole picture is asked for by a mask of all bits.
ZimgLines LinesOf(const ZimgLibrary& library, ZimgSize size, unsigned buffered)
{
    ZimgLines lines = {};
    lines.mask = library.bufferMask(buffered);
    lines.lines =
        lines.mask == ZIMG_BUFFER_MAX || lines.mask >= size.height ? size.height : lines.mask + 1;
    if (lines.lines == size.height)
        lines.mask = ZIMG_BUFFER_MAX;
    lines.stride = Aligned(size.width * sizeof(float)) / sizeof(float);
    return lines;
}

uint64_t BytesOfLines(const ZimgLines& lines)
{
    return uint64_t{3} * lines.lines * lines.stride * sizeof(float);
}

float* LineOf(const ZimgLines& lines, uint32_t plane, uint32_t y)
{
    return lines.samples + (size_t{plane} * lines.lines + (y & lines.mask)) * lines.stride;
}

int Call(LineCallback callback, void* user, const ZimgLines& lines, uint32_t y, uint32_t left,
         uint32_t right)
{
    float* const planes[3] = {LineOf(lines, 0, y), LineOf(lines, 1, y), LineOf(lines, 2, y)};
    return callback(user, y, left, right, planes) ? 0 : 1;
}

int OnGive(void* user, unsigned y, unsigned left, unsigned right)
{
    const auto* pass = static_cast<const ZimgPass*>(user);
    return Call(pass->give, pass->user, pass->in, y, left, right);
}

int OnTake(void* user, unsigned y, unsigned left, unsigned right)
{
    const auto* pass = static_cast<const ZimgPass*>(user);
    return Call(pass->take, pass->user, pass->out, y, left, right);
}

void SetKernel(zimg_graph_builder_params* params, ScaleKernel kernel)
{
    if (kernel == ScaleKernel::Lanczos) {
        params->resample_filter = ZIMG_RESIZE_LANCZOS;
        params->filter_param_a = lanczosLobes;
    } else if (kernel == ScaleKernel::Bicubic) {
        params->resample_filter = ZIMG_RESIZE_BICUBIC;
        params->filter_param_a = catmullRomB;
        params->filter_param_b = catmullRomC;
    } else {
        params->resample_filter = ZIMG_RESIZE_BILINEAR;
    }
}

bool Allocate(ZimgPass* pass)
{
    const uint64_t bytes = BytesOf(*pass);
    if (bytes > SIZE_MAX / 2)
        return false;
    pass->block = malloc(static_cast<size_t>(bytes));
    if (!pass->block)
        return false;
    auto* at = static_cast<uint8_t*>(pass->block);
    at += Aligned(reinterpret_cast<uintptr_t>(at)) - reinterpret_cast<uintptr_t>(at);
    pass->work = at;
    at += Aligned(pass->workBytes);
    pass->in.samples = reinterpret_cast<float*>(at);
    at += static_cast<size_t>(BytesOfLines(pass->in));
    pass->out.samples = reinterpret_cast<float*>(at);
    return true;
}

} // namespace

PassResult OpenPass(ZimgPass* pass, const ZimgLibrary* library, ZimgSize from, ZimgSize to,
                    ScaleKernel kernel)
{
    *pass = {};
    pass->library = library;
    const zimg_image_format source = FormatOf(*library, from);
    const zimg_image_format target = FormatOf(*library, to);
    zimg_graph_builder_params params;
    library->paramsDefault(&params, ZIMG_API_VERSION);
    SetKernel(&params, kernel);
    pass->graph = library->build(&source, &target, &params);
    unsigned inputLines = 0;
    unsigned outputLines = 0;
    if (!pass->graph || library->workSize(pass->graph, &pass->workBytes) != ZIMG_ERROR_SUCCESS ||
        library->inputLines(pass->graph, &inputLines) != ZIMG_ERROR_SUCCESS ||
        library->outputLines(pass->graph, &outputLines) != ZIMG_ERROR_SUCCESS) {
        library->clearError();
        return PassResult::Refused;
    }
    pass->in = LinesOf(*library, from, inputLines);
    pass->out = LinesOf(*library, to, outputLines);
    return PassResult::Done;
}

uint64_t BytesOf(const ZimgPass& pass)
{
    return alignment + uint64_t{Aligned(pass.workBytes)} + BytesOfLines(pass.in) +
           BytesOfLines(pass.out);
}

PassResult RunPass(ZimgPass* pass, LineCallback give, LineCallback take, void* user)
{
    if (!Allocate(pass))
        return PassResult::NoMemory;
    pass->give = give;
    pass->take = take;
    pass->user = user;
    zimg_image_buffer_const source = {};
    zimg_image_buffer target = {};
    source.version = target.version = ZIMG_API_VERSION;
    for (uint32_t plane = 0; plane < 3; ++plane) {
        source.plane[plane] = {LineOf(pass->in, plane, 0),
                               static_cast<ptrdiff_t>(pass->in.stride * sizeof(float)),
                               pass->in.mask};
        target.plane[plane] = {LineOf(pass->out, plane, 0),
                               static_cast<ptrdiff_t>(pass->out.stride * sizeof(float)),
                               pass->out.mask};
    }
    const zimg_error_code_e result = pass->library->process(pass->graph, &source, &target,
                                                            pass->work, OnGive, pass, OnTake, pass);
    if (result == ZIMG_ERROR_SUCCESS)
        return PassResult::Done;
    pass->library->clearError();
    return result == ZIMG_ERROR_USER_CALLBACK_FAILED ? PassResult::Ended : PassResult::Refused;
}

void ClosePass(ZimgPass* pass)
{
    if (pass->graph)
        pass->library->free(pass->graph);
    free(pass->block);
    *pass = {};
}
