#include "platform/qt/TypedSearch.h"

#include <QString>

namespace tavrix::platform
{
namespace
{

constexpr DWORD TypingPause = 1000; // ms, after which a text begins anew

} // namespace

bool TypedSearch::IsIdle() const
{
    return typed.empty() || GetTickCount() - typedAt > TypingPause;
}

std::u16string TypedSearch::Add(char16_t unit)
{
    if (IsIdle())
        typed.clear();
    typedAt = GetTickCount();
    typed.push_back(unit);
    const bool repeated = typed.find_first_not_of(typed.front()) == std::u16string::npos;
    return repeated ? typed.substr(0, 1) : typed;
}

bool TypedSearch::BeginsWith(const std::u16string& text, const std::u16string& beginning)
{
    return QString::fromStdU16String(text).startsWith(QString::fromStdU16String(beginning),
                                                      Qt::CaseInsensitive);
}

} // namespace tavrix::platform
