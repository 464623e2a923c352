// A property list under any order of setters, and its values read as any type, against what each
// pair of stored and wanted type gives. Each operation of the input is a setter, a name, a wanted
// type, a length and so many bytes of text or number.
#include "fuzz/Entry.h"
#include "settings/PropertyList.h"

#include <algorithm>
#include <map>

namespace
{

constexpr uintptr_t Untouched = 0x12345678;

struct Value {
    u32 type = VariantNone;
    std::u16string wide;
    std::string narrow;
};

std::string Narrowed(const std::u16string& text)
{
    std::string bytes(text.size() * 4 + 1, '\0');
    WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, bytes.data(), static_cast<int>(bytes.size()),
                        nullptr, nullptr);
    return UpToZero(bytes);
}

std::u16string Widened(const std::string& text)
{
    std::u16string wide(text.size() * 2 + 1, u'\0');
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    return UpToZero(wide);
}

std::u16string Digits(u32 number)
{
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
}

i32 Store(PropertyList& list, const WCHAR* name, uint8_t setter, Input payload, Value* value)
{
    u32 number = 0;
    for (Input bytes = payload; bytes.left > 0;)
        number = number << 8 | bytes.Byte();
    const i32 negative = static_cast<i32>(number);
    *value = {};
    value->type = setter % 5;
    switch (value->type) {
    case VariantUnsigned:
        value->wide = Digits(number);
        break;
    case VariantSigned:
        value->wide = negative < 0 ? u"-" + Digits(0u - number) : Digits(number);
        break;
    case VariantWide:
        value->wide = UpToZero(payload.Units());
        break;
    case VariantNarrow:
        value->narrow = UpToZero(payload.Bytes(payload.left));
        value->wide = Widened(value->narrow);
        break;
    default:
        break;
    }
    if (value->type != VariantNarrow)
        value->narrow = Narrowed(value->wide);

    const u32 setType = value->type;
    if (setType == VariantUnsigned || setType == VariantSigned)
        value->type = VariantWide; // numbers are kept as text
    uintptr_t passed = number;
    if (setType == VariantWide)
        passed = reinterpret_cast<uintptr_t>(value->wide.c_str());
    else if (setType == VariantNarrow)
        passed = reinterpret_cast<uintptr_t>(value->narrow.c_str());
    const Variant item{name, setType, passed};
    if (setter >= 128)
        return list.Set(&item);
    switch (setType) {
    case VariantNone:
        return list.SetEmpty(name);
    case VariantUnsigned:
        return list.SetUnsigned(name, number);
    case VariantSigned:
        return list.SetSigned(name, negative);
    case VariantWide:
        return list.SetWide(name, value->wide.c_str());
    default:
        return list.SetNarrow(name, value->narrow.c_str());
    }
}

/// The digits' value in 64 bits; false for any other character.
bool ReadDigits(const std::u16string& text, u64* number)
{
    *number = 0;
    for (const char16_t character : text)
        *number = *number * 10 + (character - u'0');
    return text.find_first_not_of(u"0123456789") == text.npos;
}

void RequireNumber(i32 result, const Variant& item, const Value& value)
{
    const bool isSigned = item.type == VariantSigned;
    const bool hasSign = isSigned && !value.wide.empty() && value.wide[0] == u'-';
    u64 number = 0;
    if (!ReadDigits(value.wide.substr(hasSign ? 1 : 0), &number)) {
        Require(result == -100 && item.value == Untouched, "what is no number changes nothing");
        return;
    }
    const u64 expected = isSigned ? number & 0xFFFFFFFF : std::min<u64>(number, 0xFFFFFFFF);
    Require(result == 1 && item.value == expected, "a text of digits reads as its number");
}

void RequireConverted(i32 result, const Variant& item, const WCHAR* name, u32 wanted,
                      const Value& value)
{
    if (wanted == VariantNone || value.type == VariantNone) {
        Require(result == -100 && item.name == nullptr && item.type == 0 && item.value == 0,
                "no type and no value give a zeroed record");
        return;
    }
    Require(item.type == wanted && std::u16string(item.name) == name, "name and type");
    const bool isNumber = wanted == VariantUnsigned || wanted == VariantSigned;
    if (wanted == VariantWide)
        Require(result == 1 && value.wide == reinterpret_cast<const WCHAR*>(item.value), "wide");
    else if (wanted == VariantNarrow)
        Require(result == 1 && value.narrow == reinterpret_cast<const char*>(item.value), "narrow");
    else if (isNumber && value.type == VariantWide)
        RequireNumber(result, item, value);
    else
        Require(result == -100 && item.value == Untouched, "what does not convert");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const WCHAR* const names[] = {TEXT(""), TEXT("a"), TEXT("A"), TEXT("ab")};
    Input input{data, size};
    PropertyList list;
    std::map<std::u16string, Value> known;
    while (input.left > 0) {
        const uint8_t setter = input.Byte();
        const WCHAR* name = names[input.Byte() % 4];
        const u32 wanted = input.Byte() % 8;
        const std::string payload = input.Bytes(input.Byte());

        Variant item{name, wanted, Untouched};
        if (!known.contains(name)) {
            Require(list.Get(&item) == -10 && item.type == 0 && item.value == 0, "unknown name");
            item = {name, wanted, Untouched};
        }
        Value value;
        const Input text{reinterpret_cast<const uint8_t*>(payload.data()), payload.size()};
        Require(Store(list, name, setter, text, &value) == (known.contains(name) ? 5 : 3),
                "added or replaced");
        known[name] = value;
        const i32 result = list.Get(&item);
        RequireConverted(result, item, name, wanted, value);
        Require(list.Count() == static_cast<i32>(known.size()), "one entry a name");
        // The others keep what they hold.
        for (const auto& [other, held] : known) {
            Variant text3{other.c_str(), VariantWide, Untouched};
            const i32 got = list.Get(&text3);
            RequireConverted(got, text3, other.c_str(), VariantWide, held);
        }
    }
    return 0;
}
