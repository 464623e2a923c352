#include "plugin/PluginObjects.h"

#include "image/Raster.h"
#include "plugin/PluginHeap.h"

#include <new>

namespace
{

struct Link {
    Link* next;
    void (*destroy)(Link* link);
};

template <typename Object>
struct Made : Link {
    explicit Made(Allocator* allocator) : Link{}, object(allocator) {}
    Object object;
};

Link* firstMade = nullptr;

template <typename Object>
void Destroy(Link* link)
{
    Made<Object>* made = static_cast<Made<Object>*>(link);
    made->~Made<Object>();
    (void)PluginHeap()->Free(made);
}

template <typename Object>
i32 Make(Object** out)
{
    *out = nullptr;
    Allocator* heap = PluginHeap();
    void* block = nullptr;
    if (heap == nullptr || heap->Alloc(&block, sizeof(Made<Object>)) < 0)
        return NoMemory;
    Made<Object>* made = new (block) Made<Object>(heap);
    made->destroy = Destroy<Object>;
    made->next = firstMade;
    firstMade = made;
    *out = &made->object;
    return Done;
}

template <typename Object>
i32 FindAndDestroy(const Object* object)
{
    for (Link** place = &firstMade; *place != nullptr; place = &(*place)->next) {
        Link* link = *place;
        if (link->destroy != Destroy<Object>)
            continue;
        if (&static_cast<Made<Object>*>(link)->object != object)
            continue;
        *place = link->next;
        link->destroy(link);
        return Done;
    }
    return Failed;
}

} // namespace

i32 MakePluginObject(Raster** out)
{
    return Make(out);
}

i32 MakePluginObject(ColorTable** out)
{
    return Make(out);
}

i32 DestroyPluginObject(Raster* object)
{
    return FindAndDestroy(object);
}

i32 DestroyPluginObject(ColorTable* object)
{
    return FindAndDestroy(object);
}

void DestroyPluginObjects()
{
    while (firstMade != nullptr) {
        Link* link = firstMade;
        firstMade = link->next;
        link->destroy(link);
    }
}
