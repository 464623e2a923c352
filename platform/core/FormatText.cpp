// wsprintfW: a format's fields, one after the other, into at most 1,024 characters with the final
// zero. What goes beyond is dropped and the text still ends with a zero.

#include <windows.h>

#include <cstdarg>
#include <cstring>

namespace
{

constexpr size_t Capacity = 1024;

/// The caller's buffer, which never takes more than the interface promises.
class Output
{
public:
    explicit Output(LPWSTR buffer) : text(buffer) {}

    void Put(WCHAR unit)
    {
        if (length < Capacity - 1)
            text[length++] = unit;
    }
    void Fill(WCHAR unit, size_t count)
    {
        for (; count != 0 && length < Capacity - 1; --count)
            Put(unit);
    }
    int End()
    {
        text[length] = 0;
        return static_cast<int>(length);
    }

private:
    LPWSTR text;
    size_t length = 0;
};

/// What stands between the percent sign and the type.
struct Field {
    bool left = false;
    bool zeros = false;
    bool alternate = false;
    bool narrow = false; // prefix h
    bool wide = false;   // prefix l or w
    size_t width = 0;
    bool hasPrecision = false;
    size_t precision = 0;
};

size_t ReadNumber(LPCWSTR* format)
{
    size_t number = 0;
    for (; **format >= '0' && **format <= '9'; ++*format)
        if (number < 100000)
            number = number * 10 + static_cast<size_t>(**format - '0');
    return number;
}

Field ReadField(LPCWSTR* format)
{
    Field field;
    for (;; ++*format) {
        if (**format == '-')
            field.left = true;
        else if (**format == '0')
            field.zeros = true;
        else if (**format == '#')
            field.alternate = true;
        else
            break;
    }
    field.width = ReadNumber(format);
    if (**format == '.') {
        ++*format;
        field.hasPrecision = true;
        field.precision = ReadNumber(format);
    }
    for (;; ++*format) {
        if (**format == 'h')
            field.narrow = true;
        else if (**format == 'l' || **format == 'w')
            field.wide = true;
        else
            return field;
    }
}

void PutText(Output& output, const Field& field, LPCWSTR text)
{
    if (text == nullptr)
        text = TEXT("(null)");
    size_t length = 0;
    while ((!field.hasPrecision || length < field.precision) && text[length] != 0)
        ++length;
    const size_t padding = field.width > length ? field.width - length : 0;
    if (!field.left)
        output.Fill(field.zeros ? '0' : ' ', padding);
    for (size_t at = 0; at < length; ++at)
        output.Put(text[at]);
    if (field.left)
        output.Fill(' ', padding);
}

// A narrow text in a wide one goes through the ANSI code page.
void PutNarrowText(Output& output, const Field& field, const char* text)
{
    if (text == nullptr) {
        PutText(output, field, nullptr);
        return;
    }
    WCHAR converted[Capacity] = {};
    // With a precision the bytes need no final zero, so no more than it names are looked at.
    const size_t most =
        field.hasPrecision && field.precision < Capacity - 1 ? field.precision : Capacity - 1;
    const size_t length = strnlen(text, most);
    if (length != 0)
        MultiByteToWideChar(CP_ACP, 0, text, static_cast<int>(length), converted, Capacity - 1);
    PutText(output, field, converted);
}

void PutUnit(Output& output, Field field, WCHAR unit)
{
    // A zero character is put out as one, which ends the text for whoever reads it.
    const size_t padding = field.width > 1 ? field.width - 1 : 0;
    if (!field.left)
        output.Fill(field.zeros ? '0' : ' ', padding);
    output.Put(unit);
    if (field.left)
        output.Fill(' ', padding);
}

void PutNumber(Output& output, const Field& field, bool negative, uint64_t magnitude, unsigned base,
               bool capitals)
{
    const char* const digits = capitals ? "0123456789ABCDEF" : "0123456789abcdef";
    WCHAR reversed[24];
    size_t count = 0;
    do {
        reversed[count++] = static_cast<WCHAR>(digits[magnitude % base]);
        magnitude /= base;
    } while (magnitude != 0);

    const bool prefix = field.alternate && base == 16;
    size_t length = count + (negative ? 1 : 0) + (prefix ? 2 : 0);
    size_t zeros = field.hasPrecision && field.precision > count ? field.precision - count : 0;
    length += zeros;
    size_t padding = field.width > length ? field.width - length : 0;
    if (field.zeros && !field.left) {
        zeros += padding;
        padding = 0;
    }
    if (!field.left)
        output.Fill(' ', padding);
    if (negative)
        output.Put('-');
    if (prefix) {
        output.Put('0');
        output.Put(capitals ? 'X' : 'x');
    }
    output.Fill('0', zeros);
    while (count != 0)
        output.Put(reversed[--count]);
    if (field.left)
        output.Fill(' ', padding);
}

int Format(LPWSTR buffer, LPCWSTR format, va_list arguments)
{
    Output output(buffer);
    while (*format != 0) {
        if (*format != '%') {
            output.Put(*format++);
            continue;
        }
        ++format;
        Field field = ReadField(&format);
        const WCHAR type = *format;
        if (type == 0)
            break;
        ++format;
        switch (type) {
        case 'd':
        case 'i': {
            // Long has 32 bits here, with the prefix and without.
            const int64_t number = va_arg(arguments, int);
            PutNumber(output, field, number < 0,
                      static_cast<uint64_t>(number < 0 ? -number : number), 10, false);
            break;
        }
        case 'u':
            PutNumber(output, field, false, va_arg(arguments, unsigned), 10, false);
            break;
        case 'x':
        case 'X':
            PutNumber(output, field, false, va_arg(arguments, unsigned), 16, type == 'X');
            break;
        case 'p':
            field.hasPrecision = true;
            field.precision = 2 * sizeof(void*);
            PutNumber(output, field, false, reinterpret_cast<uintptr_t>(va_arg(arguments, void*)),
                      16, true);
            break;
        case 'c':
        case 'C':
            // The capital means the other width than the function's own, a prefix means its own.
            if (field.narrow || (type == 'C' && !field.wide))
                PutUnit(output, field, static_cast<unsigned char>(va_arg(arguments, int)));
            else
                PutUnit(output, field, static_cast<WCHAR>(va_arg(arguments, int)));
            break;
        case 's':
        case 'S':
            if (field.narrow || (type == 'S' && !field.wide))
                PutNarrowText(output, field, va_arg(arguments, const char*));
            else
                PutText(output, field, va_arg(arguments, const WCHAR*));
            break;
        default:
            // Also the second of two percent signs.
            output.Put(type);
            break;
        }
    }
    return output.End();
}

} // namespace

int wsprintfW(LPWSTR buffer, LPCWSTR format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = Format(buffer, format, arguments);
    va_end(arguments);
    return length;
}
