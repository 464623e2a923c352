// Tests look at files from outside, by their host paths.

#include "platform/core/HostPaths.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"

#include <cstdlib>

namespace tavrix::testing
{

std::string HostPath(const WCHAR* devicePath)
{
    return platform::HostPathOf(devicePath);
}

std::string FreshFolder()
{
    // Below the run's own home, which TestMain removes at its end.
    std::string path = TestHome() + "/tmp/fresh-XXXXXX";
    if (mkdtemp(path.data()) == nullptr)
        std::abort();
    return path;
}

} // namespace tavrix::testing
