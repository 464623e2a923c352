// The resource calls over the records that modules have made known.

#include "platform/core/Resources.h"

#include "platform/host/Resources.h"

#include <map>
#include <mutex>

using namespace tavrix::platform;

namespace
{

constexpr DWORD ResourceTypeNotFound = 1813;

struct Registry {
    std::mutex lock;
    // Keyed by instance, the program's under null. The records stay where they are, so that a
    // pointer to one serves as the caller's handle.
    std::map<HINSTANCE, std::vector<ResourceRecord>> modules;
};

Registry& TheRegistry()
{
    // Never destroyed: filled before main, and dialogs may be up until the very end.
    static Registry* const registry = new Registry;
    return *registry;
}

HINSTANCE KeyInstance(HINSTANCE instance)
{
    return instance == GetModuleHandleW(nullptr) ? nullptr : instance;
}

/// The record behind a caller's handle; null when it is none of the module's. The lock is held.
const ResourceRecord* RecordOf(Registry& registry, HMODULE module, HRSRC resource)
{
    const auto found = registry.modules.find(KeyInstance(module));
    if (found == registry.modules.end())
        return nullptr;
    for (const ResourceRecord& record : found->second)
        if (reinterpret_cast<HRSRC>(const_cast<ResourceRecord*>(&record)) == resource)
            return &record;
    return nullptr;
}

} // namespace

void TavrixRegisterResources(HINSTANCE instance, const void* begin, const void* end)
{
    std::vector<ResourceRecord> records =
        ParseResources(static_cast<const std::byte*>(begin), static_cast<const std::byte*>(end));
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> held(registry.lock);
    registry.modules[KeyInstance(instance)] = std::move(records);
}

void tavrix::platform::ForgetResources(HINSTANCE instance)
{
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> held(registry.lock);
    registry.modules.erase(KeyInstance(instance));
}

HRSRC WINAPI FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type)
{
    const LANGID language = GetSystemDefaultLangID();
    const ResourceKey typeKey = KeyOf(type);
    const ResourceKey nameKey = KeyOf(name);
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> held(registry.lock);
    const auto found = registry.modules.find(KeyInstance(module));
    if (found == registry.modules.end() || found->second.empty()) {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return nullptr;
    }
    const std::vector<ResourceRecord>& records = found->second;
    if (const ResourceRecord* record = ChooseResource(records, typeKey, nameKey, language))
        return reinterpret_cast<HRSRC>(const_cast<ResourceRecord*>(record));
    bool typeKnown = false;
    for (const ResourceRecord& record : records)
        typeKnown = typeKnown || record.type == typeKey;
    SetLastError(typeKnown ? ERROR_RESOURCE_NAME_NOT_FOUND : ResourceTypeNotFound);
    return nullptr;
}

HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource)
{
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> held(registry.lock);
    const ResourceRecord* record = RecordOf(registry, module, resource);
    if (record == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    // Embedded data is in memory already; its handle is its address.
    return const_cast<std::byte*>(record->data);
}

LPVOID WINAPI LockResource(HGLOBAL data)
{
    return data;
}

DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource)
{
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> held(registry.lock);
    const ResourceRecord* record = RecordOf(registry, module, resource);
    if (record == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return record->size;
}
