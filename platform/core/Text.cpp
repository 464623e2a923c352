// Text between code pages and the device's 16-bit characters. Pure ASCII, which nearly all of it
// is, never reaches the converter of the host. Nothing here takes memory of its own: a conversion
// writes what fits as it goes and counts the rest.

#include "platform/core/Language.h"

#include <windows.h>

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
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
    Converter(const char* toName, const char* fromName)
        : to(toName), from(fromName), descriptor(iconv_open(to, from))
    {
    }
    ~Converter()
    {
        if (IsOpen())
            iconv_close(descriptor);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// Opens the host's converter if that did not succeed before, as when memory was short.
    Converter& Opened()
    {
        if (!IsOpen())
            descriptor = iconv_open(to, from);
        return *this;
    }

    /// Converts as far as it goes: moves both pointers. False when it stopped at input that it
    /// cannot convert, true at the input's end or when the output is full.
    bool Run(const char** input, size_t* inputLeft, char** output, size_t* outputLeft)
    {
        if (!IsOpen())
            return false;
        iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(*input);
        const size_t done = iconv(descriptor, &in, inputLeft, output, outputLeft);
        *input = in;
        return done != ConversionFailed || errno == E2BIG;
    }

private:
    bool IsOpen() const { return descriptor != reinterpret_cast<iconv_t>(-1); }

    const char* to;
    const char* from;
    iconv_t descriptor;
};

constexpr const char* WideName =
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "UTF-16LE" : "UTF-16BE";

// Each is opened when a thread first needs it.
Converter& Decoder(UINT codePage)
{
    if (codePage == CP_UTF8) {
        thread_local Converter utf8(WideName, "UTF-8");
        return utf8.Opened();
    }
    if (codePage == CodePageJapanese) {
        thread_local Converter japanese(WideName, "CP932");
        return japanese.Opened();
    }
    thread_local Converter western(WideName, "CP1252");
    return western.Opened();
}

Converter& Encoder(UINT codePage)
{
    if (codePage == CP_UTF8) {
        thread_local Converter utf8("UTF-8", WideName);
        return utf8.Opened();
    }
    if (codePage == CodePageJapanese) {
        thread_local Converter japanese("CP932", WideName);
        return japanese.Opened();
    }
    thread_local Converter western("CP1252", WideName);
    return western.Opened();
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

/// A byte that stands for one character alone, in both directions, and that the host's converter
/// does not know.
struct LoneByte {
    unsigned char byte;
    WCHAR character;
};

// The western page leaves five bytes unassigned: they stand for the control characters of the same
// number. The Japanese one has five that are neither characters nor the first half of one.
constexpr LoneByte WesternBytes[] = {
    {0x81, 0x81}, {0x8D, 0x8D}, {0x8F, 0x8F}, {0x90, 0x90}, {0x9D, 0x9D}};
constexpr LoneByte JapaneseBytes[] = {
    {0x80, 0x80}, {0xA0, 0xF8F0}, {0xFD, 0xF8F1}, {0xFE, 0xF8F2}, {0xFF, 0xF8F3}};

std::span<const LoneByte> LoneBytes(UINT codePage)
{
    if (codePage == CodePageWestern)
        return WesternBytes;
    if (codePage == CodePageJapanese)
        return JapaneseBytes;
    return {};
}

/// What the device shows for bytes that are no character.
WCHAR ReplacementFor(UINT codePage)
{
    if (codePage == CP_UTF8)
        return 0xFFFD;
    if (codePage == CodePageJapanese)
        return 0x30FB; // katakana middle dot
    return '?';
}

bool IsPair(unsigned char lead, unsigned char trail)
{
    const bool isLead = (lead >= 0x81 && lead <= 0x9F) || (lead >= 0xE0 && lead <= 0xFC);
    return isLead && trail >= 0x40 && trail <= 0xFC && trail != 0x7F;
}

/// How many of the bytes at `text` are one thing that cannot be decoded. In UTF-8 the longest
/// beginning of a well-formed character counts as one, in Japanese the two halves of a character
/// that is not assigned: its second half must not be taken for the first of the next one.
size_t InvalidLength(UINT codePage, const unsigned char* text, size_t length)
{
    if (codePage == CodePageJapanese)
        return length > 1 && IsPair(text[0], text[1]) ? 2 : 1;
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

int Refuse(DWORD error)
{
    SetLastError(error);
    return 0;
}

/// Where a result goes: what fits is written, everything is counted. A capacity of 0 only counts.
template <class To>
class Output
{
public:
    Output(To* destination, int size) : target(destination), capacity(static_cast<size_t>(size)) {}

    template <class From>
    void Put(const From* units, size_t count)
    {
        const size_t fitting = length < capacity ? std::min(count, capacity - length) : 0;
        if (fitting != 0)
            std::transform(units, units + fitting, target + length,
                           [](From unit) { return static_cast<To>(unit); });
        length += count;
    }

    /// The answer of the call. What did not fit is cut, and the call has failed.
    int Result() const
    {
        if (length > 0x7FFFFFFF)
            return Refuse(ERROR_INVALID_PARAMETER);
        if (capacity != 0 && length > capacity)
            return Refuse(ERROR_INSUFFICIENT_BUFFER);
        return static_cast<int>(length);
    }

private:
    To* target;
    size_t capacity;
    size_t length = 0;
};

/// Decodes the whole of `bytes`; false when something had to be replaced.
bool Decode(UINT codePage, std::string_view bytes, Output<WCHAR>& output)
{
    Converter& converter = Decoder(codePage);
    const char* input = bytes.data();
    size_t inputLeft = bytes.size();
    bool clean = true;
    while (inputLeft != 0) {
        WCHAR piece[512];
        char* end = reinterpret_cast<char*>(piece);
        size_t room = sizeof piece;
        const bool good = converter.Run(&input, &inputLeft, &end, &room);
        output.Put(piece, (sizeof piece - room) / sizeof(WCHAR));
        if (good || inputLeft == 0)
            continue;
        const unsigned char* bad = reinterpret_cast<const unsigned char*>(input);
        const auto lone = LoneBytes(codePage);
        const auto found = std::find_if(lone.begin(), lone.end(),
                                        [bad](const LoneByte& each) { return each.byte == *bad; });
        size_t taken = 1;
        if (found != lone.end()) {
            output.Put(&found->character, 1);
        } else {
            const WCHAR replacement = ReplacementFor(codePage);
            output.Put(&replacement, 1);
            clean = false;
            taken = InvalidLength(codePage, bad, inputLeft);
        }
        input += taken;
        inputLeft -= taken;
    }
    return clean;
}

bool IsHalfOfPair(WCHAR unit)
{
    return unit >= 0xD800 && unit <= 0xDFFF;
}

/// How many units at the beginning of `text` the host's converter may see. No page but UTF-8 has a
/// character of two units, and the host would drop some of those without a word.
size_t ConvertibleLength(UINT codePage, std::u16string_view text)
{
    if (codePage == CP_UTF8)
        return text.size();
    return static_cast<size_t>(std::find_if(text.begin(), text.end(), IsHalfOfPair) - text.begin());
}

/// Encodes text into a code page, with the default character for what the page lacks.
class Encoding
{
public:
    Encoding(UINT page, std::string_view defaultCharacter, Output<char>& target)
        : codePage(page), converter(Encoder(page)), instead(defaultCharacter), output(target)
    {
    }

    void Run(std::u16string_view text)
    {
        while (!text.empty()) {
            const size_t length = ConvertibleLength(codePage, text);
            RunConvertible(text.substr(0, length));
            if (length == text.size())
                break;
            // One unit at a time: half of a pair is replaced like the other half.
            Replace(text[length]);
            text.remove_prefix(length + 1);
        }
    }

    /// Whether the default character was not needed.
    bool IsClean() const { return clean; }

private:
    void RunConvertible(std::u16string_view text)
    {
        const char* input = reinterpret_cast<const char*>(text.data());
        size_t inputLeft = text.size() * sizeof(WCHAR);
        while (inputLeft != 0) {
            char piece[1024];
            char* end = piece;
            size_t room = sizeof piece;
            // Up to where it stops, the host's converter reads far ahead, each time anew.
            const size_t offered = codePage == CP_UTF8 ? inputLeft : std::min(inputLeft, Offer);
            size_t offerLeft = offered;
            const bool good = converter.Run(&input, &offerLeft, &end, &room);
            output.Put(piece, sizeof piece - room);
            inputLeft -= offered - offerLeft;
            if (good || inputLeft == 0)
                continue;
            Replace(text[text.size() - inputLeft / sizeof(WCHAR)]);
            input += sizeof(WCHAR);
            inputLeft -= sizeof(WCHAR);
        }
    }

    void Replace(WCHAR unit)
    {
        for (const LoneByte& lone : LoneBytes(codePage)) {
            if (lone.character == unit) {
                output.Put(&lone.byte, 1);
                return;
            }
        }
        output.Put(instead.data(), instead.size());
        clean = false;
    }

    static constexpr size_t Offer = 64 * sizeof(WCHAR);

    UINT codePage;
    Converter& converter;
    std::string_view instead;
    Output<char>& output;
    bool clean = true;
};

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
    Output<WCHAR> output(text, capacity);
    if (AllAscii(bytes, length)) {
        output.Put(bytes, length);
        return output.Result();
    }
    if ((flags & FailOnInvalid) != 0) {
        // Looked at first, so that a text that is refused leaves the buffer as it was.
        Output<WCHAR> nowhere(nullptr, 0);
        if (!Decode(page, {bytes, length}, nowhere))
            return Refuse(NoUnicodeTranslation);
    }
    Decode(page, {bytes, length}, output);
    return output.Result();
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
    Output<char> output(bytes, capacity);
    if (AllAscii(text, units)) {
        output.Put(text, units);
        return output.Result();
    }
    std::string_view instead = page == CP_UTF8 ? "\xEF\xBF\xBD" : "?";
    if (defaultCharacter != nullptr && defaultCharacter[0] != 0)
        instead = defaultCharacter;
    Encoding encoding(page, instead, output);
    encoding.Run({text, units});
    if (usedDefault != nullptr)
        *usedDefault = encoding.IsClean() ? FALSE : TRUE;
    return output.Result();
}
