// Text to numbers: both widths of character agree, and each parser does what a plain reading does.
#include "foundation/Numbers.h"
#include "fuzz/Entry.h"

#include <cmath>
#include <cstring>

namespace
{

/// What a parser must give: -1 and 0 for anything but digits, else their value in 64 bits.
struct Reading {
    i32 result = 1;
    u64 value = 0;
};

Reading Plain(const std::string& text)
{
    Reading reading;
    for (const char character : text) {
        const size_t digit = std::string("0123456789").find(character);
        if (digit == std::string::npos)
            return {-1, 0};
        reading.value = reading.value * 10 + digit;
    }
    return reading;
}

template <class Text>
void RequireIntegers(const Text& text, const Reading& plain, const Reading& withoutSign)
{
    u64 value = 77;
    Require(ParseUnsigned(text.c_str(), &value) == plain.result, "ParseUnsigned's result");
    Require(value == plain.value, "ParseUnsigned's value");
    value = 77;
    Require(ParseSigned(text.c_str(), &value) == withoutSign.result, "ParseSigned's result");
    Require(value == withoutSign.value, "ParseSigned's value");
}

/// Digits with at most one point, few enough for the system's own reading to come near.
bool IsPlainReal(const std::string& text)
{
    return text.size() <= 15 && text.find_first_not_of("0123456789.") == text.npos &&
           text.find('.') == text.rfind('.') && text != ".";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string narrow = UpToZero(Input{data, size}.Bytes(size));
    std::u16string wide;
    for (const char character : narrow)
        wide.push_back(static_cast<unsigned char>(character));

    const Reading plain = Plain(narrow);
    const bool hasSign = !narrow.empty() && narrow[0] == '-';
    const Reading withoutSign = hasSign ? Plain(narrow.substr(1)) : plain;
    RequireIntegers(narrow, plain, withoutSign);
    RequireIntegers(wide, plain, withoutSign);

    f64 fromNarrow = 77;
    f64 fromWide = 78;
    Require(ParseReal(narrow.c_str(), &fromNarrow) == 1, "ParseReal refuses no character");
    Require(ParseReal(wide.c_str(), &fromWide) == 1, "ParseReal refuses no wide character");
    Require(std::memcmp(&fromNarrow, &fromWide, sizeof(f64)) == 0, "both widths read one number");
    if (IsPlainReal(narrow)) {
        const f64 near = std::strtod(narrow.c_str(), nullptr);
        Require(std::fabs(fromNarrow - near) <= 1e-12 * (near + 1), "ParseReal's value");
    }
    return 0;
}
