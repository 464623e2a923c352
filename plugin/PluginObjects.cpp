#include "plugin/PluginObjects.h"

#include "image/Raster.h"
#include "plugin/FunctionTables.h"
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
Raster* lentImage = nullptr;

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

/// The place that holds the link of the object behind a handle; null when none was made here.
template <typename Object, typename Handle>
Link** FindMade(Handle handle)
{
    if (PluginHeap() == nullptr)
        return nullptr;
    for (Link** place = &firstMade; *place != nullptr; place = &(*place)->next)
        if ((*place)->destroy == Destroy<Object> &&
            ToHandle(&static_cast<Made<Object>*>(*place)->object) == handle)
            return place;
    return nullptr;
}

template <typename Object, typename Handle>
Object* FindObject(Handle handle)
{
    Link** place = FindMade<Object>(handle);
    return place == nullptr ? nullptr : &static_cast<Made<Object>*>(*place)->object;
}

template <typename Object, typename Handle>
i32 FindAndDestroy(Handle handle)
{
    Link** place = FindMade<Object>(handle);
    if (place == nullptr)
        return Failed;
    Link* link = *place;
    *place = link->next;
    link->destroy(link);
    return Done;
}

} // namespace

void LendPluginImage(Raster* image)
{
    lentImage = image;
}

Raster* FindPluginImage(TavrixImageHandle handle)
{
    if (handle == nullptr || PluginHeap() == nullptr)
        return nullptr;
    return handle == ToHandle(lentImage) ? lentImage : FindObject<Raster>(handle);
}

ColorTable* FindPluginPalette(TavrixPaletteHandle handle)
{
    return FindObject<ColorTable>(handle);
}

i32 MakePluginObject(Raster** out)
{
    return Make(out);
}

i32 MakePluginObject(ColorTable** out)
{
    return Make(out);
}

i32 DestroyPluginObject(TavrixImageHandle handle)
{
    return FindAndDestroy<Raster>(handle);
}

i32 DestroyPluginObject(TavrixPaletteHandle handle)
{
    return FindAndDestroy<ColorTable>(handle);
}

u32 CountPluginObjects()
{
    u32 count = 0;
    for (const Link* link = firstMade; link != nullptr; link = link->next)
        ++count;
    return count;
}

void DestroyPluginObjects()
{
    lentImage = nullptr;
    while (firstMade != nullptr) {
        Link* link = firstMade;
        firstMade = link->next;
        link->destroy(link);
    }
}
