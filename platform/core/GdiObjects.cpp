#include "platform/core/Gdi.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <new>

namespace tavrix::platform
{
namespace
{

// Handles of both kinds come from one counter that never gives a number twice in practice.
constexpr uintptr_t FirstHandle = 0x10000;
constexpr uintptr_t HandleStep = 4;

struct Table {
    std::mutex lock;
    uintptr_t next = FirstHandle;
    std::map<uintptr_t, std::shared_ptr<GdiObject>> objects;
    std::map<uintptr_t, std::shared_ptr<DeviceContext>> contexts;
};

// Never destroyed: static objects of the program may free theirs after us.
Table& Objects()
{
    static Table& table = *new Table;
    return table;
}

template <class Handle, class Map, class Pointer>
Handle Add(Table& table, Map& map, Pointer object)
{
    std::lock_guard guard(table.lock);
    try {
        map.emplace(table.next, std::move(object));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    const uintptr_t value = table.next;
    table.next += HandleStep;
    return reinterpret_cast<Handle>(value);
}

HGDIOBJ AddStockBrush(COLORREF color, bool hollow)
{
    const auto brush = std::make_shared<Brush>();
    brush->color = color;
    brush->hollow = hollow;
    brush->stock = true;
    return AddGdiObject(brush);
}

struct StockObjects {
    std::array<HGDIOBJ, 6> brushes; // in the order of WHITE_BRUSH ... NULL_BRUSH
    HGDIOBJ font;
    HGDIOBJ pen;
    HGDIOBJ bitmap;
};

const StockObjects& Stock()
{
    static const StockObjects& stock = *[] {
        auto* objects = new StockObjects;
        objects->brushes = {
            AddStockBrush(RGB(255, 255, 255), false), AddStockBrush(RGB(192, 192, 192), false),
            AddStockBrush(RGB(128, 128, 128), false), AddStockBrush(RGB(64, 64, 64), false),
            AddStockBrush(RGB(0, 0, 0), false),       AddStockBrush(0, true)};
        LOGFONTW plain{};
        plain.lfWeight = FW_NORMAL;
        plain.lfCharSet = DEFAULT_CHARSET;
        const auto font = std::make_shared<Font>(plain);
        font->stock = true;
        objects->font = AddGdiObject(font);
        const auto pen = std::make_shared<PlainObject>(GdiObject::Kind::Pen);
        pen->stock = true;
        objects->pen = AddGdiObject(pen);
        const auto pixel = std::make_shared<Bitmap>();
        pixel->stock = true;
        pixel->colors = {RGBQUAD{0, 0, 0, 0}, RGBQUAD{255, 255, 255, 0}};
        pixel->memory = std::calloc(1, 4);
        pixel->surface = {
            static_cast<uint8_t*>(pixel->memory), 4, 1, 1, 1, pixel->colors.data(), false};
        objects->bitmap = AddGdiObject(pixel);
        return objects;
    }();
    return stock;
}

BITMAP DescriptionOf(const Bitmap& bitmap)
{
    const Surface& surface = bitmap.surface;
    BITMAP answer{};
    answer.bmWidth = surface.width;
    answer.bmHeight = surface.height;
    answer.bmWidthBytes = static_cast<LONG>(std::abs(surface.stride));
    answer.bmPlanes = 1;
    answer.bmBitsPixel = static_cast<WORD>(surface.depth);
    answer.bmBits = bitmap.stock ? nullptr : bitmap.memory;
    return answer;
}

/// GetObjectW's answer: how many bytes were written, or are needed where there is no buffer.
template <class Record>
int Describe(const Record& description, int size, void* buffer)
{
    constexpr int Needed = sizeof(Record);
    if (buffer == nullptr)
        return Needed;
    if (size < Needed)
        return 0;
    std::memcpy(buffer, &description, sizeof(Record));
    return Needed;
}

} // namespace

Bitmap::~Bitmap()
{
    std::free(memory);
}

HGDIOBJ AddGdiObject(std::shared_ptr<GdiObject> object)
{
    Table& table = Objects();
    return Add<HGDIOBJ>(table, table.objects, std::move(object));
}

std::shared_ptr<GdiObject> FindGdiObject(HGDIOBJ handle)
{
    Table& table = Objects();
    std::lock_guard guard(table.lock);
    const auto found = table.objects.find(reinterpret_cast<uintptr_t>(handle));
    return found != table.objects.end() ? found->second : nullptr;
}

bool RemoveGdiObject(HGDIOBJ handle)
{
    Table& table = Objects();
    std::lock_guard guard(table.lock);
    const auto found = table.objects.find(reinterpret_cast<uintptr_t>(handle));
    if (found == table.objects.end() || found->second->stock)
        return false;
    table.objects.erase(found);
    return true;
}

size_t CountDrawingObjects()
{
    Table& table = Objects();
    std::lock_guard guard(table.lock);
    const auto made = std::count_if(table.objects.begin(), table.objects.end(),
                                    [](const auto& entry) { return !entry.second->stock; });
    return static_cast<size_t>(made) + table.contexts.size();
}

HDC AddDeviceContext(std::shared_ptr<DeviceContext> context)
{
    const StockObjects& stock = Stock();
    context->brush = stock.brushes[WHITE_BRUSH];
    context->font = stock.font;
    context->pen = stock.pen;
    if (context->memory)
        context->bitmap = stock.bitmap;
    Table& table = Objects();
    return Add<HDC>(table, table.contexts, std::move(context));
}

std::shared_ptr<DeviceContext> FindDeviceContext(HDC handle)
{
    Table& table = Objects();
    std::lock_guard guard(table.lock);
    const auto found = table.contexts.find(reinterpret_cast<uintptr_t>(handle));
    return found != table.contexts.end() ? found->second : nullptr;
}

bool RemoveDeviceContext(HDC handle)
{
    Table& table = Objects();
    std::lock_guard guard(table.lock);
    return table.contexts.erase(reinterpret_cast<uintptr_t>(handle)) != 0;
}

bool BrushColor(HGDIOBJ brush, COLORREF* color)
{
    const auto object = FindGdiObject(brush);
    if (object == nullptr || object->kind != GdiObject::Kind::Brush)
        return false;
    const Brush& found = static_cast<const Brush&>(*object);
    if (found.hollow)
        return false;
    *color = found.color;
    return true;
}

bool FontRecord(HGDIOBJ font, LOGFONTW* record)
{
    const auto object = FindGdiObject(font);
    if (object == nullptr || object->kind != GdiObject::Kind::Font || object->stock)
        return false;
    *record = static_cast<const Font&>(*object).record;
    return true;
}

} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

BOOL WINAPI DeleteObject(HGDIOBJ object)
{
    const auto found = FindGdiObject(object);
    if (found == nullptr)
        return FALSE;
    if (found->stock)
        return TRUE; // said to do no harm
    // A bitmap stays as long as a context draws to it.
    if (found->selectedIn != nullptr || found->kept)
        return FALSE;
    return RemoveGdiObject(object);
}

int WINAPI GetObjectW(HANDLE object, int size, LPVOID record)
{
    const auto found = FindGdiObject(object);
    if (found == nullptr)
        return 0;
    switch (found->kind) {
    case GdiObject::Kind::Bitmap:
        return Describe(DescriptionOf(static_cast<const Bitmap&>(*found)), size, record);
    case GdiObject::Kind::Font:
        return Describe(static_cast<const Font&>(*found).record, size, record);
    default:
        return 0;
    }
}

HGDIOBJ WINAPI GetStockObject(int index)
{
    const StockObjects& stock = Stock();
    if (index >= WHITE_BRUSH && index <= NULL_BRUSH)
        return stock.brushes[static_cast<size_t>(index)];
    return index == SYSTEM_FONT ? stock.font : nullptr;
}

HFONT WINAPI CreateFontIndirectW(const LOGFONTW* record)
{
    if (record == nullptr)
        return nullptr;
    LOGFONTW kept = *record;
    kept.lfFaceName[LF_FACESIZE - 1] = 0;
    return static_cast<HFONT>(static_cast<void*>(AddGdiObject(std::make_shared<Font>(kept))));
}

HBRUSH WINAPI CreateSolidBrush(COLORREF color)
{
    const auto brush = std::make_shared<Brush>();
    brush->color = color & 0xFFFFFF;
    return static_cast<HBRUSH>(static_cast<void*>(AddGdiObject(brush)));
}

} // extern "C"
