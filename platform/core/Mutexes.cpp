// Mutexes: owned by a thread, as often as it took them. One with a name exists once for all
// processes of the user and display, which is how a second start of the program learns of the
// first.

#include "platform/core/Deadline.h"
#include "platform/core/HandleTable.h"
#include "platform/core/NameLock.h"
#include "platform/core/NameSpace.h"

#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace tavrix::platform;

namespace
{

constexpr DWORD NameTooLong = 206;
constexpr DWORD NotOwner = 288;
// The host has no waiting lock with a time-out; ownership across processes is asked for this often.
constexpr auto AskOtherProcesses = std::chrono::milliseconds(5);

class MutexObject final : public KernelObject, public std::enable_shared_from_this<MutexObject>
{
public:
    explicit MutexObject(std::unique_ptr<NameLock> lockAcrossProcesses)
        : shared(std::move(lockAcrossProcesses))
    {
    }

    DWORD Wait(DWORD milliseconds) override;
    /// The current thread becomes the owner of a mutex that no other thread has seen yet.
    void OwnFromTheStart();
    /// False when the current thread is not the owner.
    bool Release();
    /// The owner's thread has ended without giving the mutex back.
    void Abandon();

private:
    /// Nobody owns it any more. The lock is held.
    void SetFree(bool wasAbandoned);

    std::mutex lock; // guards what follows
    std::condition_variable freed;
    DWORD owner = 0; // a thread of this process
    unsigned depth = 0;
    bool abandoned = false;
    const std::unique_ptr<NameLock> shared; // null for one that no other process sees
};

/// What a thread owns, given up when it ends: whoever waits for it must not wait for ever.
class OwnedMutexes
{
public:
    ~OwnedMutexes()
    {
        for (const std::weak_ptr<MutexObject>& owned : list)
            if (const auto mutex = owned.lock())
                mutex->Abandon();
    }
    void Add(std::weak_ptr<MutexObject> mutex)
    {
        std::erase_if(list, [](const auto& owned) { return owned.expired(); });
        list.push_back(std::move(mutex));
    }
    void Remove(const MutexObject* mutex)
    {
        std::erase_if(list, [mutex](const auto& owned) { return owned.lock().get() == mutex; });
    }

private:
    std::vector<std::weak_ptr<MutexObject>> list;
};

thread_local OwnedMutexes ownedHere;

bool IsEnding()
{
    const ThreadEnding* const ending = ThreadEnding::Current();
    return ending != nullptr && ending->IsAsked();
}

DWORD MutexObject::Wait(DWORD milliseconds)
{
    const Deadline deadline(milliseconds);
    const DWORD current = GetCurrentThreadId();
    std::unique_lock<std::mutex> held(lock);
    if (owner == current) {
        ++depth;
        return WAIT_OBJECT_0;
    }
    if (!deadline.WaitOn(freed, held, [this] { return owner == 0; }))
        return WAIT_TIMEOUT;
    // Owned among the threads of this process first, then among processes.
    owner = current;
    depth = 1;
    const bool wasAbandoned = abandoned;
    held.unlock();
    while (shared != nullptr && !shared->TryOwn()) {
        if (deadline.HasPassed() || IsEnding()) {
            held.lock();
            SetFree(wasAbandoned);
            return WAIT_TIMEOUT;
        }
        std::this_thread::sleep_for(AskOtherProcesses);
    }
    ownedHere.Add(weak_from_this());
    return wasAbandoned ? WAIT_ABANDONED : WAIT_OBJECT_0;
}

void MutexObject::OwnFromTheStart()
{
    const std::lock_guard<std::mutex> held(lock);
    owner = GetCurrentThreadId();
    depth = 1;
    ownedHere.Add(weak_from_this());
}

bool MutexObject::Release()
{
    const std::lock_guard<std::mutex> held(lock);
    if (owner != GetCurrentThreadId())
        return false;
    if (--depth != 0)
        return true;
    ownedHere.Remove(this);
    if (shared != nullptr)
        shared->Disown();
    SetFree(false);
    return true;
}

void MutexObject::Abandon()
{
    const std::lock_guard<std::mutex> held(lock);
    if (shared != nullptr)
        shared->Disown();
    SetFree(true);
}

void MutexObject::SetFree(bool wasAbandoned)
{
    owner = 0;
    depth = 0;
    abandoned = wasAbandoned;
    freed.notify_one();
}

/// The named mutexes of this process, so that a second look-up here meets the same object.
struct NamedMutexes {
    std::mutex lock;
    std::map<std::u16string, std::weak_ptr<MutexObject>, std::less<>> known;
};

NamedMutexes& Named()
{
    static NamedMutexes* const named = new NamedMutexes;
    return *named;
}

/// The mutex of that name, made if this process has none; `*existed` tells whether it was there.
std::shared_ptr<MutexObject> OpenNamed(const std::u16string& name, bool own, bool* existed)
{
    NamedMutexes& named = Named();
    const std::lock_guard<std::mutex> held(named.lock);
    std::erase_if(named.known, [](const auto& entry) { return entry.second.expired(); });
    if (const auto found = named.known.find(name); found != named.known.end())
        if (auto mutex = found->second.lock()) {
            *existed = true;
            return mutex;
        }
    // Where the host gives no place to meet, the name means something in this process alone: the
    // program starts all the same.
    std::unique_ptr<NameLock> shared;
    *existed = false;
    if (const std::string folder = SharedFolder(); !folder.empty())
        shared = NameLock::Open(
            folder,
            std::string(reinterpret_cast<const char*>(name.data()), name.size() * sizeof(WCHAR)),
            own, existed);
    auto mutex = std::make_shared<MutexObject>(std::move(shared));
    if (own && !*existed)
        mutex->OwnFromTheStart();
    named.known[name] = mutex;
    return mutex;
}

} // namespace

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES, BOOL initialOwner, LPCWSTR name)
{
    bool existed = false;
    std::shared_ptr<MutexObject> mutex;
    if (name != nullptr && name[0] != 0) {
        if (wcslen(name) > MAX_PATH) {
            SetLastError(NameTooLong);
            return nullptr;
        }
        mutex = OpenNamed(name, initialOwner != FALSE, &existed);
    } else {
        mutex = std::make_shared<MutexObject>(nullptr);
        if (initialOwner != FALSE)
            mutex->OwnFromTheStart();
    }
    const HANDLE handle = AddHandle(std::move(mutex));
    // Set on success too: callers tell a new mutex from one that was there by the last error.
    SetLastError(handle == nullptr ? ERROR_NOT_ENOUGH_MEMORY
                 : existed         ? ERROR_ALREADY_EXISTS
                                   : ERROR_SUCCESS);
    return handle;
}

BOOL WINAPI ReleaseMutex(HANDLE handle)
{
    const std::shared_ptr<MutexObject> mutex = FindObjectAs<MutexObject>(handle);
    if (mutex == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (!mutex->Release()) {
        SetLastError(NotOwner);
        return FALSE;
    }
    return TRUE;
}
