// Searches in folders. A search reads the whole folder when it begins, since its order is by name.

#include "platform/core/ErrorCodes.h"
#include "platform/core/FileTree.h"
#include "platform/core/FindData.h"
#include "platform/core/HandleTable.h"

#include <algorithm>

namespace tavrix::platform
{

namespace
{

/// The device counts in units of 100 ns from the begin of 1601.
FILETIME TimeOf(const timespec& time)
{
    constexpr int64_t SecondsTo1970 = 11644473600;
    const int64_t units =
        (static_cast<int64_t>(time.tv_sec) + SecondsTo1970) * 10000000 + time.tv_nsec / 100;
    const uint64_t value = static_cast<uint64_t>(std::max<int64_t>(units, 0));
    return {static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
}

class Search : public KernelObject
{
public:
    explicit Search(std::vector<ListedFile> found) : files(std::move(found)) {}

    bool Next(WIN32_FIND_DATAW* data)
    {
        const std::lock_guard guard(lock);
        if (next == files.size())
            return false;
        FillFindData(files[next].name, files[next].info, data);
        ++next;
        return true;
    }

private:
    std::mutex lock;
    const std::vector<ListedFile> files;
    size_t next = 0;
};

/// Finds what a pattern names.
DWORD Collect(LPCWSTR pattern, std::vector<ListedFile>* files)
{
    DevicePath path;
    const DWORD error = ParsePath(pattern, &path);
    if (error != ERROR_SUCCESS)
        return error;
    // The root has no name to be found by, and a separator at the end leaves no pattern.
    if (path.parts.empty() || path.endsInSeparator)
        return ERROR_FILE_NOT_FOUND;
    const std::shared_ptr<FileTree> tree = CurrentTree();
    if (path.parts.back().find_first_of(u"*?") == std::u16string::npos) {
        FoundFile found;
        const DWORD result = tree->Find(path, &found);
        if (result == ERROR_SUCCESS)
            files->push_back({tree->NameOf(path, found), found.info});
        return result;
    }
    const std::u16string wanted = Folded(path.parts.back());
    path.parts.pop_back();
    const DWORD result = tree->List(
        path, [&wanted](std::u16string_view name) { return FitsPattern(name, wanted); }, files);
    return result == ERROR_SUCCESS && files->empty() ? ERROR_FILE_NOT_FOUND : result;
}

} // namespace

DWORD AttributesOf(std::u16string_view name, const struct stat& info)
{
    DWORD attributes = 0;
    if (S_ISDIR(info.st_mode))
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    if ((info.st_mode & 0222) == 0)
        attributes |= FILE_ATTRIBUTE_READONLY;
    if (name.starts_with(u'.'))
        attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

void FillFindData(std::u16string_view name, const struct stat& info, WIN32_FIND_DATAW* data)
{
    *data = {};
    data->dwFileAttributes = AttributesOf(name, info);
    data->ftCreationTime = TimeOf(info.st_mtim);
    data->ftLastAccessTime = TimeOf(info.st_atim);
    data->ftLastWriteTime = TimeOf(info.st_mtim);
    if (S_ISREG(info.st_mode)) {
        const uint64_t size = static_cast<uint64_t>(info.st_size);
        data->nFileSizeHigh = static_cast<DWORD>(size >> 32);
        data->nFileSizeLow = static_cast<DWORD>(size);
    }
    const size_t length = std::min<size_t>(name.size(), MAX_PATH - 1);
    std::copy_n(name.begin(), length, data->cFileName);
}

} // namespace tavrix::platform

using namespace tavrix::platform;

HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW data)
{
    return WithoutThrowing(INVALID_HANDLE_VALUE, [&] {
        std::vector<ListedFile> files;
        DWORD error = data == nullptr ? ERROR_INVALID_PARAMETER : Collect(pattern, &files);
        HANDLE handle = nullptr;
        if (error == ERROR_SUCCESS) {
            const auto search = std::make_shared<Search>(std::move(files));
            search->Next(data);
            handle = AddHandle(search);
            if (handle == nullptr)
                error = ERROR_NOT_ENOUGH_MEMORY;
        }
        if (error != ERROR_SUCCESS)
            SetLastError(error);
        return error == ERROR_SUCCESS ? handle : INVALID_HANDLE_VALUE;
    });
}

BOOL WINAPI FindNextFileW(HANDLE find, LPWIN32_FIND_DATAW data)
{
    const std::shared_ptr<Search> search = FindObjectAs<Search>(find);
    if (search == nullptr)
        return FailWith(ERROR_INVALID_HANDLE);
    if (data == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    return search->Next(data) ? TRUE : FailWith(ERROR_NO_MORE_FILES);
}

BOOL WINAPI FindClose(HANDLE find)
{
    if (FindObjectAs<Search>(find) == nullptr)
        return FailWith(ERROR_INVALID_HANDLE);
    return RemoveHandle(find) != nullptr ? TRUE : FailWith(ERROR_INVALID_HANDLE);
}
