#include "standard-plugins/common/scaling/ZimgLibrary.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace
{

#ifdef _WIN32
void* OpenLibrary()
{
    return reinterpret_cast<void*>(LoadLibraryW(L"z.dll"));
}

void* Find(void* library, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void CloseLibrary(void* library)
{
    (void)FreeLibrary(static_cast<HMODULE>(library));
}
#else
void* OpenLibrary()
{
    return dlopen("libzimg.so.2", RTLD_NOW | RTLD_LOCAL);
}

void* Find(void* library, const char* name)
{
    return dlsym(library, name);
}

void CloseLibrary(void* library)
{
    (void)dlclose(library);
}
#endif

template <typename Function>
bool Bind(void* library, const char* name, Function* function)
{
    *function = reinterpret_cast<Function>(Find(library, name));
    return *function != nullptr;
}

} // namespace

bool OpenZimg(ZimgLibrary* library)
{
    *library = {};
    void* handle = OpenLibrary();
    if (!handle)
        return false;
    library->handle = handle;
    if (Bind(handle, "zimg_image_format_default", &library->formatDefault) &&
        Bind(handle, "zimg_graph_builder_params_default", &library->paramsDefault) &&
        Bind(handle, "zimg_filter_graph_build", &library->build) &&
        Bind(handle, "zimg_filter_graph_free", &library->free) &&
        Bind(handle, "zimg_filter_graph_get_tmp_size", &library->workSize) &&
        Bind(handle, "zimg_filter_graph_get_input_buffering", &library->inputLines) &&
        Bind(handle, "zimg_filter_graph_get_output_buffering", &library->outputLines) &&
        Bind(handle, "zimg_select_buffer_mask", &library->bufferMask) &&
        Bind(handle, "zimg_filter_graph_process", &library->process) &&
        Bind(handle, "zimg_clear_last_error", &library->clearError))
        return true;
    CloseZimg(library);
    return false;
}

void CloseZimg(ZimgLibrary* library)
{
    if (library->handle)
        CloseLibrary(library->handle);
    *library = {};
}
