// A library for the tests of modules: exports a few functions, learns its own handle while its
// constructors run, and registers a resource for it.

#include "platform/host/Modules.h"
#include "platform/host/Resources.h"

namespace
{

// The empty record, then RCDATA 7, neutral, of the four bytes "mine".
alignas(16) const unsigned char resources[] = {
    0,   0,  0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 0,  0, 0xFF, 0xFF, 0, 0, 0,   0,   //
    0,   0,  0, 0, 0,  0, 0, 0, 0,    0,    0,  0, 0,    0,                    //
    4,   0,  0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 10, 0, 0xFF, 0xFF, 7, 0,           //
    0,   0,  0, 0, 0,  0, 0, 0, 0,    0,    0,  0, 0,    0,    0, 0, 'm', 'i', //
    'n', 'e'};

HINSTANCE handleInConstructor = nullptr;

__attribute__((constructor)) void Begin()
{
    handleInConstructor = TavrixModuleOf(resources);
    TavrixRegisterResources(handleInConstructor, resources, resources + sizeof resources);
}

} // namespace

extern "C" __attribute__((visibility("default"))) int SampleAnswer(void)
{
    return 42;
}

extern "C" __attribute__((visibility("default"))) HINSTANCE SampleHandle(void)
{
    return handleInConstructor;
}

extern "C" int DependencyAnswer(void);

extern "C" __attribute__((visibility("default"))) int SampleDependency(void)
{
    return DependencyAnswer();
}
