#include "platform/core/TestHooks.h"

namespace tavrix::platform
{

TestHooks& Hooks()
{
    // Never destroyed: objects that outlive main still give memory back and ask here.
    static TestHooks* const hooks = new TestHooks;
    return *hooks;
}

} // namespace tavrix::platform
