// Text between code pages and the device's 16-bit characters. Pure ASCII, which nearly all of it
// is, never reaches the converter of the host.

#include "platform/core/Language.h"

#include <windows.h>

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace
{

using tavrix::platform::LanguageJapanese;

constexpr UINT CodePageJapanese = 932;
constexpr UINT CodePageWestern = 1252;
constexpr DWORD FailOnInvalid = 8; // the same bit in decoding only
constexpr DWORD NoUnicodeTranslation = 1113;
constexpr size_t ConversionFailed = static_cast<size_t>(-1);

/// One direction of one code page. The host's descriptors have a state, so each thread has its own.
class Converter
{
public:
    Converter(const char* to, const char* from) : descriptor(iconv_open(to, from)) {}
    ~Converter()
    {
        if (Usable())
            iconv_close(descriptor);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool Usable() const { return descriptor != reinterpret_cast<iconv_t>(-1); }

    /// Converts as far as it goes: moves both pointers. False when it stopped at input that it
    /// cannot convert, true at the input's end or when the output is full.
    bool Run(const char** input, size_t* inputLeft, char** output, size_t* outputLeft)
    {
        iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(*input);
        const size_t done = iconv(descriptor, &in, inputLeft, output, outputLeft);
        *input = in;
        return done != ConversionFailed || errno == E2BIG;
    }

private:
    iconv_t descriptor;
};

constexpr const char* WideName =
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "UTF-16LE" : "UTF-16BE";

// Each is opened when a thread first needs it.
Converter& Decoder(UINT codePage)
{
    if (codePage == CP_UTF8) {
        thread_local Converter utf8(WideName, "UTF-8");
        return utf8;
    }
    if (codePage == CodePageJapanese) {
        thread_local Converter japanese(WideName, "CP932");
        return japanese;
    }
    thread_local Converter western(WideName, "CP1252");
    return western;
}

Converter& Encoder(UINT codePage)
{
    if (codePage == CP_UTF8) {
        thread_local Converter utf8("UTF-8", WideName);
        return utf8;
    }
    if (codePage == CodePageJapanese) {
        thread_local Converter japanese("CP932", WideName);
        return japanese;
    }
    thread_local Converter western("CP1252", WideName);
    return western;
}

/// The code page meant, 0 when it is none that this platform has.
UINT ResolveCodePage(UINT codePage)
{
    switch (codePage) {
    case CP_ACP:
        return GetSystemDefaultLangID() == LanguageJapanese ? CodePageJapanese : CodePageWestern;
    case CodePageJapanese:
    case CodePageWestern:
    case CP_UTF8:
        return codePage;
    default:
        return 0;
    }
}

template <class Unit>
bool AllAscii(const Unit* text, size_t length)
{
    return std::all_of(text, text + length, [](Unit unit) {
        return static_cast<std::make_unsigned_t<Unit>>(unit) < 0x80;
    });
}

// The five bytes that the western page does not assign stand for the control characters of the same
// number, in both directions.
bool IsUnassignedWestern(unsigned unit)
{
    return unit == 0x81 || unit == 0x8D || unit == 0x8F || unit == 0x90 || unit == 0x9D;
}

WCHAR ReplacementFor(UINT codePage, unsigned char byte)
{
    if (codePage == CP_UTF8)
        return 0xFFFD;
    if (codePage == CodePageJapanese)
        return 0x30FB; // katakana middle dot
    return IsUnassignedWestern(byte) ? byte : static_cast<WCHAR>('?');
}

/// How many of the bytes at `text` are one thing that cannot be decoded. In UTF-8 the longest
/// beginning of a well-formed character counts as one.
size_t InvalidLength(UINT codePage, const unsigned char* text, size_t length)
{
    if (codePage != CP_UTF8)
        return 1;
    const unsigned char lead = text[0];
    const size_t trails = lead >= 0xF0 && lead <= 0xF4   ? 3
                          : lead >= 0xE0 && lead <= 0xEF ? 2
                          : lead >= 0xC2 && lead <= 0xDF ? 1
                                                         : 0;
    size_t taken = 1;
    for (; taken <= trails && taken < length; ++taken) {
        unsigned char low = 0x80;
        unsigned char high = 0xBF;
        if (taken == 1) {
            low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
            high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
        }
        if (text[taken] < low || text[taken] > high)
            break;
    }
    return taken;
}

/// The whole of `bytes` decoded; `*clean` tells whether nothing had to be replaced.
std::u16string Decode(UINT codePage, std::string_view bytes, bool* clean)
{
    Converter& converter = Decoder(codePage);
    std::u16string text;
    const char* input = bytes.data();
    size_t inputLeft = bytes.size();
    *clean = true;
    while (inputLeft != 0) {
        WCHAR buffer[512];
        char* output = reinterpret_cast<char*>(buffer);
        size_t outputLeft = sizeof buffer;
        const bool good =
            converter.Usable() && converter.Run(&input, &inputLeft, &output, &outputLeft);
        text.append(buffer, (sizeof buffer - outputLeft) / sizeof(WCHAR));
        if (good || inputLeft == 0)
            continue;
        const unsigned char* bad = reinterpret_cast<const unsigned char*>(input);
        const WCHAR replacement = ReplacementFor(codePage, *bad);
        *clean = *clean && replacement == *bad;
        text.push_back(replacement);
        const size_t skipped = InvalidLength(codePage, bad, inputLeft);
        input += skipped;
        inputLeft -= skipped;
    }
    return text;
}

/// The whole of `text` encoded; `*replaced` tells whether the default character had to be used.
std::string Encode(UINT codePage, std::u16string_view text, std::string_view defaultCharacter,
                   bool* replaced)
{
    Converter& converter = Encoder(codePage);
    std::string bytes;
    const char* input = reinterpret_cast<const char*>(text.data());
    size_t inputLeft = text.size() * sizeof(WCHAR);
    *replaced = false;
    while (inputLeft != 0) {
        char buffer[1024];
        char* output = buffer;
        size_t outputLeft = sizeof buffer;
        const bool good =
            converter.Usable() && converter.Run(&input, &inputLeft, &output, &outputLeft);
        bytes.append(buffer, sizeof buffer - outputLeft);
        if (good || inputLeft == 0)
            continue;
        const WCHAR bad = text[text.size() - inputLeft / sizeof(WCHAR)];
        if (codePage == CodePageWestern && IsUnassignedWestern(bad)) {
            bytes.push_back(static_cast<char>(bad));
        } else {
            bytes.append(defaultCharacter);
            *replaced = true;
        }
        // One unit at a time: half of a pair is replaced like the other half.
        input += sizeof(WCHAR);
        inputLeft -= sizeof(WCHAR);
    }
    return bytes;
}

int Refuse(DWORD error)
{
    SetLastError(error);
    return 0;
}

/// Hands a result out. What does not fit is cut, and the call has failed.
template <class To, class From>
int Deliver(const From* source, size_t length, To* target, int capacity)
{
    if (length > 0x7FFFFFFF)
        return Refuse(ERROR_INVALID_PARAMETER);
    if (capacity == 0)
        return static_cast<int>(length);
    const size_t room = static_cast<size_t>(capacity);
    std::transform(source, source + std::min(length, room), target,
                   [](From unit) { return static_cast<To>(unit); });
    return length > room ? Refuse(ERROR_INSUFFICIENT_BUFFER) : static_cast<int>(length);
}

bool Refused(const void* source, int length, const void* target, int capacity)
{
    return source == nullptr || length == 0 || capacity < 0 ||
           (capacity > 0 && (target == nullptr || target == source));
}

} // namespace

int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int byteCount, LPWSTR text,
                               int capacity)
{
    const UINT page = ResolveCodePage(codePage);
    if (page == 0 || Refused(bytes, byteCount, text, capacity))
        return Refuse(ERROR_INVALID_PARAMETER);
    // A negative length is that of a text that ends with a zero, which is converted too.
    const size_t length = byteCount < 0 ? std::strlen(bytes) + 1 : static_cast<size_t>(byteCount);
    if (AllAscii(bytes, length))
        return Deliver(bytes, length, text, capacity);
    bool clean = true;
    const std::u16string decoded = Decode(page, {bytes, length}, &clean);
    if (!clean && (flags & FailOnInvalid) != 0)
        return Refuse(NoUnicodeTranslation);
    return Deliver(decoded.data(), decoded.size(), text, capacity);
}

int WINAPI WideCharToMultiByte(UINT codePage, DWORD, LPCWSTR text, int length, LPSTR bytes,
                               int capacity, LPCSTR defaultCharacter, LPBOOL usedDefault)
{
    const UINT page = ResolveCodePage(codePage);
    if (page == 0 || Refused(text, length, bytes, capacity))
        return Refuse(ERROR_INVALID_PARAMETER);
    // Every character has a form in UTF-8, so that asking for another one is a mistake there.
    if (page == CP_UTF8 && (defaultCharacter != nullptr || usedDefault != nullptr))
        return Refuse(ERROR_INVALID_PARAMETER);
    if (usedDefault != nullptr)
        *usedDefault = FALSE;
    const size_t units = length < 0 ? wcslen(text) + 1 : static_cast<size_t>(length);
    if (AllAscii(text, units))
        return Deliver(text, units, bytes, capacity);
    std::string_view instead = page == CP_UTF8 ? "\xEF\xBF\xBD" : "?";
    if (defaultCharacter != nullptr && defaultCharacter[0] != 0)
        instead = defaultCharacter;
    bool replaced = false;
    const std::string encoded = Encode(page, {text, units}, instead, &replaced);
    if (usedDefault != nullptr)
        *usedDefault = replaced ? TRUE : FALSE;
    return Deliver(encoded.data(), encoded.size(), bytes, capacity);
}
