#include "platform/qt/TextBreaks.h"

#include <QChar>

#include <algorithm>
#include <iterator>

namespace tavrix::platform
{
namespace
{

constexpr size_t LongestSign = 256;

// No line begins with these.
constexpr std::u16string_view NeverFirst = u"、。，．・：；？！」』】〕〉》）］｝〗〙〛〟｠｡､･｣"
                                           u"ーゝゞヽヾ々〻゛゜〜～゠％"
                                           u"ぁぃぅぇぉっゃゅょゎゕゖァィゥェォッャュョヮヵヶ"
                                           u"ㇰㇱㇲㇳㇴㇵㇶㇷㇸㇹㇺㇻㇼㇽㇾㇿｧｨｩｪｫｬｭｮｯｰﾞﾟ";
// No line ends with these.
constexpr std::u16string_view NeverLast = u"「『【〔〈《（［｛〖〘〚〝｟｢￥＄￡";
// The narrow ones cling to a sign beside them, but a space frees them: ".NET" may begin a line.
constexpr std::u16string_view ClingingBehind = u")]},.!?:;%'’”»›…‥°′″℃‰‐–";
constexpr std::u16string_view ClingingBefore = u"([{‘“«‹$£¥#@";

bool IsOneOf(char32_t sign, std::u16string_view signs)
{
    return sign < 0x10000 && signs.find(static_cast<char16_t>(sign)) != signs.npos;
}

struct Range {
    char32_t first;
    char32_t last;
};
// Signs that need no space between them. The letters of Korean, which has spaces, are not among
// them.
constexpr Range WithoutSpaces[] = {
    {0x2E80, 0x2FDF},   // parts of signs
    {0x2FF0, 0x312F},   // punctuation, both kana, bopomofo
    {0x3190, 0x33FF},   // signs in circles and squares
    {0x3400, 0x4DBF},   // rarer signs
    {0x4E00, 0x9FFF},   // the common ones
    {0xF900, 0xFAFF},   // doubles of them
    {0xFE30, 0xFE4F},   // upright punctuation
    {0xFF01, 0xFF9F},   // full-width Latin, half-width kana
    {0xFFE0, 0xFFE6},   // full-width currency
    {0x1B000, 0x1B16F}, // old kana
    {0x1F200, 0x1F2FF}, // signs in squares
    {0x20000, 0x3FFFD}, // the rarest
};

bool NeedsNoSpaces(char32_t sign)
{
    return std::any_of(std::begin(WithoutSpaces), std::end(WithoutSpaces), [=](const Range& range) {
        return sign >= range.first && sign <= range.last;
    });
}

char32_t SignAt(std::u16string_view text, size_t at)
{
    const char16_t unit = text[at];
    if (QChar::isHighSurrogate(unit) && at + 1 < text.size() && QChar::isLowSurrogate(text[at + 1]))
        return QChar::surrogateToUcs4(unit, text[at + 1]);
    return unit;
}

constexpr char32_t Joiner = 0x200D;

bool IsMark(char32_t sign)
{
    return sign == Joiner || QChar::isMark(sign) || (sign >= 0x1F3FB && sign <= 0x1F3FF);
}

bool IsSpaceAt(std::u16string_view text, size_t at)
{
    const char16_t unit = text[at];
    return (unit == u' ' || unit == u'\t' || unit == 0x3000) && SignEnd(text, at) == at + 1;
}

bool MayPart(char32_t before, char32_t after)
{
    return !IsOneOf(before, NeverLast) && !IsOneOf(after, NeverFirst);
}

bool MayPartWithoutSpace(char32_t before, char32_t after)
{
    return (NeedsNoSpaces(before) || NeedsNoSpaces(after)) && MayPart(before, after) &&
           !IsOneOf(before, ClingingBefore) && !IsOneOf(after, ClingingBehind);
}

} // namespace

size_t SignEnd(std::u16string_view text, size_t at)
{
    const size_t limit = std::min(text.size(), at + LongestSign);
    char32_t sign = SignAt(text, at);
    size_t end = at + (sign > 0xFFFF ? 2 : 1);
    while (end < limit) {
        const char32_t next = SignAt(text, end);
        // What a joiner ties is one sign, whatever follows it.
        if (!IsMark(next) && sign != Joiner)
            break;
        sign = next;
        end += sign > 0xFFFF ? 2 : 1;
    }
    return end;
}

Stretch NextStretch(std::u16string_view text, size_t at)
{
    size_t end = at;
    size_t shown = at;
    char32_t last = 0;
    while (end < text.size()) {
        if (IsSpaceAt(text, end)) {
            while (end < text.size() && IsSpaceAt(text, end))
                ++end;
            if (end == text.size() || MayPart(last, SignAt(text, end)))
                break;
        }
        const char32_t sign = SignAt(text, end);
        if (last != 0 && end == shown && MayPartWithoutSpace(last, sign))
            break;
        end = SignEnd(text, end);
        shown = end;
        last = sign;
    }
    return {shown, end};
}

} // namespace tavrix::platform
