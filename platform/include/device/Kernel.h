// The device's system calls without windows: files, threads, events, heaps, modules, memory, time,
// text conversion and resources. Meanings are the public ones of the interface; what this platform
// does not do of them is listed in platform/README.md. Included through <windows.h> only.
//
// Paths are device paths: absolute from "\", separated by "\". A failing call leaves its reason for
// GetLastError on the calling thread. Every call may be made from any thread.
#pragma once

#include "device/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

// Last error.
#define ERROR_SUCCESS 0u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_PATH_NOT_FOUND 3u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_NO_MORE_FILES 18u
#define ERROR_SHARING_VIOLATION 32u
#define ERROR_HANDLE_EOF 38u
#define ERROR_FILE_EXISTS 80u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_DISK_FULL 112u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_INVALID_NAME 123u
#define ERROR_MOD_NOT_FOUND 126u
#define ERROR_PROC_NOT_FOUND 127u
#define ERROR_DIR_NOT_EMPTY 145u
#define ERROR_ALREADY_EXISTS 183u
#define ERROR_RESOURCE_DATA_NOT_FOUND 1812u
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814u
CE_API DWORD WINAPI GetLastError(void);
CE_API void WINAPI SetLastError(DWORD error);

// Files.
#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define FILE_SHARE_READ 1u
#define FILE_SHARE_WRITE 2u
#define CREATE_NEW 1u
#define CREATE_ALWAYS 2u
#define OPEN_EXISTING 3u
#define OPEN_ALWAYS 4u
#define TRUNCATE_EXISTING 5u
#define FILE_ATTRIBUTE_READONLY 0x1u
#define FILE_ATTRIBUTE_HIDDEN 0x2u
#define FILE_ATTRIBUTE_DIRECTORY 0x10u
#define FILE_ATTRIBUTE_NORMAL 0x80u
#define FILE_BEGIN 0u
#define FILE_CURRENT 1u
#define FILE_END 2u
#define INVALID_FILE_SIZE 0xFFFFFFFFu
#define INVALID_SET_FILE_POINTER 0xFFFFFFFFu
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu

typedef struct _FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME, *LPFILETIME;

typedef struct _SECURITY_ATTRIBUTES
{
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

typedef struct _OVERLAPPED* LPOVERLAPPED;

typedef struct _WIN32_FIND_DATAW
{
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    WCHAR cFileName[MAX_PATH];
    WCHAR cAlternateFileName[14];
} WIN32_FIND_DATAW, *LPWIN32_FIND_DATAW;

CE_API HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD shareMode,
                                 LPSECURITY_ATTRIBUTES security, DWORD disposition,
                                 DWORD attributes, HANDLE templateFile);
CE_API BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD length, LPDWORD done,
                            LPOVERLAPPED overlapped);
CE_API BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD length, LPDWORD done,
                             LPOVERLAPPED overlapped);
CE_API DWORD WINAPI SetFilePointer(HANDLE file, LONG distance, PLONG distanceHigh, DWORD origin);
CE_API BOOL WINAPI SetEndOfFile(HANDLE file);
CE_API BOOL WINAPI FlushFileBuffers(HANDLE file);
CE_API DWORD WINAPI GetFileSize(HANDLE file, LPDWORD sizeHigh);
CE_API DWORD WINAPI GetFileAttributesW(LPCWSTR path);
CE_API BOOL WINAPI DeleteFileW(LPCWSTR path);
CE_API BOOL WINAPI MoveFileW(LPCWSTR from, LPCWSTR to);
CE_API BOOL WINAPI CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists);
CE_API BOOL WINAPI CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES security);
CE_API BOOL WINAPI RemoveDirectoryW(LPCWSTR path);
typedef union _ULARGE_INTEGER {
    struct {
        DWORD LowPart;
        DWORD HighPart;
    } u;
    uint64_t QuadPart;
} ULARGE_INTEGER, *PULARGE_INTEGER;
CE_API BOOL WINAPI GetDiskFreeSpaceExW(LPCWSTR folder, PULARGE_INTEGER freeToCaller,
                                       PULARGE_INTEGER total, PULARGE_INTEGER freeToAll);
CE_API HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW data);
CE_API BOOL WINAPI FindNextFileW(HANDLE find, LPWIN32_FIND_DATAW data);
CE_API BOOL WINAPI FindClose(HANDLE find);

// Kernel objects and threads.
#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x80u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu
#define CREATE_SUSPENDED 4u
#define STILL_ACTIVE 259u
typedef DWORD(WINAPI* LPTHREAD_START_ROUTINE)(LPVOID parameter);
CE_API BOOL WINAPI CloseHandle(HANDLE handle);
CE_API HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize,
                                  LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags,
                                  LPDWORD threadId);
CE_API BOOL WINAPI GetExitCodeThread(HANDLE thread, LPDWORD exitCode);
/// Ends a thread that waits in a call of this interface: on a socket, an object or the clock. It
/// runs no code of its own any more, not even destructors. A thread that is at work goes on to its
/// next such call or its end; the caller waits for that, five seconds at most, then FALSE.
CE_API BOOL WINAPI TerminateThread(HANDLE thread, DWORD exitCode);
CE_API DWORD WINAPI GetCurrentThreadId(void);
CE_API DWORD WINAPI GetCurrentProcessId(void);
CE_API DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds);
CE_API HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manualReset,
                                  BOOL initialState, LPCWSTR name);
CE_API HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initialOwner, LPCWSTR name);
CE_API BOOL WINAPI ReleaseMutex(HANDLE mutex);
CE_API void WINAPI Sleep(DWORD milliseconds);
/// A lock of this process that its holder may take again.
typedef struct _CRITICAL_SECTION {
    ULONG_PTR reserved[8];
} CRITICAL_SECTION, *LPCRITICAL_SECTION;
CE_API void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION section);
CE_API void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION section);
CE_API void WINAPI EnterCriticalSection(LPCRITICAL_SECTION section);
CE_API void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION section);

// Processes. A program is a file by its device path; with CREATE_SUSPENDED it begins only at
// ResumeThread on the record's thread.
typedef struct _STARTUPINFOW
{
    DWORD cb;
    LPWSTR lpReserved;
    LPWSTR lpDesktop;
    LPWSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
} STARTUPINFOW, *LPSTARTUPINFOW;
typedef struct _PROCESS_INFORMATION
{
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
} PROCESS_INFORMATION, *LPPROCESS_INFORMATION;
CE_API BOOL WINAPI CreateProcessW(LPCWSTR program, LPWSTR commandLine,
                                  LPSECURITY_ATTRIBUTES processSecurity,
                                  LPSECURITY_ATTRIBUTES threadSecurity, BOOL inheritHandles,
                                  DWORD flags, LPVOID environment, LPCWSTR folder,
                                  LPSTARTUPINFOW startup, LPPROCESS_INFORMATION process);
CE_API DWORD WINAPI ResumeThread(HANDLE thread);

// Heaps and memory. A heap may be used from any thread and is dropped in one stroke.
#define HEAP_NO_SERIALIZE 1u
#define HEAP_ZERO_MEMORY 8u
#define GMEM_FIXED 0u
#define GMEM_MOVEABLE 2u
#define GMEM_ZEROINIT 0x40u
#define GPTR (GMEM_FIXED | GMEM_ZEROINIT)
typedef struct _MEMORYSTATUS
{
    DWORD dwLength;
    DWORD dwMemoryLoad;
    SIZE_T dwTotalPhys;
    SIZE_T dwAvailPhys;
    SIZE_T dwTotalPageFile;
    SIZE_T dwAvailPageFile;
    SIZE_T dwTotalVirtual;
    SIZE_T dwAvailVirtual;
} MEMORYSTATUS, *LPMEMORYSTATUS;
CE_API HANDLE WINAPI HeapCreate(DWORD options, SIZE_T initialSize, SIZE_T maximumSize);
CE_API BOOL WINAPI HeapDestroy(HANDLE heap);
CE_API LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T size);
CE_API BOOL WINAPI HeapFree(HANDLE heap, DWORD flags, LPVOID block);
CE_API SIZE_T WINAPI HeapSize(HANDLE heap, DWORD flags, LPCVOID block);
CE_API HANDLE WINAPI GetProcessHeap(void);
#define LMEM_FIXED 0u
#define LMEM_ZEROINIT 0x40u
#define LPTR (LMEM_FIXED | LMEM_ZEROINIT)
CE_API HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T size);
CE_API HLOCAL WINAPI LocalFree(HLOCAL block);
CE_API SIZE_T WINAPI LocalSize(HLOCAL block);
CE_API HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size);
CE_API HGLOBAL WINAPI GlobalFree(HGLOBAL block);
CE_API LPVOID WINAPI GlobalLock(HGLOBAL block);
CE_API BOOL WINAPI GlobalUnlock(HGLOBAL block);
CE_API SIZE_T WINAPI GlobalSize(HGLOBAL block);
CE_API void WINAPI GlobalMemoryStatus(LPMEMORYSTATUS status);

// Modules and resources.
typedef INT_PTR(WINAPI* FARPROC)(void);
CE_API HMODULE WINAPI LoadLibraryW(LPCWSTR path);
CE_API BOOL WINAPI FreeLibrary(HMODULE module);
CE_API HMODULE WINAPI GetModuleHandleW(LPCWSTR name);
CE_API DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD capacity);
#define RT_CURSOR MAKEINTRESOURCEW(1)
#define RT_BITMAP MAKEINTRESOURCEW(2)
#define RT_ICON MAKEINTRESOURCEW(3)
#define RT_MENU MAKEINTRESOURCEW(4)
#define RT_DIALOG MAKEINTRESOURCEW(5)
#define RT_STRING MAKEINTRESOURCEW(6)
#define RT_ACCELERATOR MAKEINTRESOURCEW(9)
#define RT_RCDATA MAKEINTRESOURCEW(10)
#define RT_GROUP_ICON MAKEINTRESOURCEW(14)
CE_API HRSRC WINAPI FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type);
CE_API HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource);
CE_API LPVOID WINAPI LockResource(HGLOBAL data);
CE_API DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource);

// Time, language, text.
typedef struct _SYSTEMTIME
{
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
} SYSTEMTIME, *LPSYSTEMTIME;
#define CP_ACP 0u
#define CP_UTF8 65001u
CE_API DWORD WINAPI GetTickCount(void);
CE_API void WINAPI GetSystemTime(LPSYSTEMTIME time);
CE_API LANGID WINAPI GetSystemDefaultLangID(void);
CE_API int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int byteCount,
                                      LPWSTR text, int capacity);
CE_API int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length,
                                      LPSTR bytes, int capacity, LPCSTR defaultCharacter,
                                      LPBOOL usedDefault);
CE_API int wsprintfW(LPWSTR buffer, LPCWSTR format, ...);

#ifdef __cplusplus
}
#endif
