#include "standard-plugins/tests/missing-libraries/Loader.h"

#include <dlfcn.h>

namespace
{

struct Missing {
    std::string name;
    missingtest::Lack lack;
    int asked;
};
Missing missing;

using Open = void* (*)(const char*, int);

Open RealOpen()
{
    static const auto open = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "dlopen"));
    return open;
}

} // namespace

// Before that of the C library in the order in which names are looked up.
extern "C" __attribute__((visibility("default"))) void* dlopen(const char* name, int flags) noexcept
{
    if (!name || missing.name.empty() || name != missing.name)
        return RealOpen()(name, flags);
    ++missing.asked;
    return missing.lack == missingtest::Lack::Library ? nullptr : RealOpen()("libutil.so.1", flags);
}

namespace missingtest
{

WithoutLibrary::WithoutLibrary(std::string name, Lack lack)
{
    missing = {std::move(name), lack, 0};
}

WithoutLibrary::~WithoutLibrary()
{
    missing = {};
}

int WithoutLibrary::Asked() const
{
    return missing.asked;
}

} // namespace missingtest
