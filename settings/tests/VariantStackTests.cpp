#include "foundation/tests/FailingAllocator.h"
#include "platform/testing/Faults.h"
#include "settings/VariantStack.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

Variant Number(u32 number)
{
    return {nullptr, VariantUnsigned, number};
}

Variant Text(const WCHAR* text)
{
    return {nullptr, VariantWide, reinterpret_cast<uintptr_t>(text)};
}

i32 PushText(VariantStack& stack, const WCHAR* text)
{
    const Variant value = Text(text);
    return stack.Push(&value);
}

// What a pop of wide text gives, or its result in brackets.
std::u16string PopText(VariantStack& stack)
{
    Variant value{nullptr, VariantWide, 0};
    const i32 result = stack.Pop(&value);
    if (result < 1)
        return u"(" + Wide(std::to_string(result)) + u")";
    return reinterpret_cast<const WCHAR*>(value.value);
}

} // namespace

TEST(VariantStack, GivesTheLastValueFirst)
{
    VariantStack stack;
    EXPECT_EQ(3, PushText(stack, u"size"));
    EXPECT_EQ(3, PushText(stack, u"text"));
    EXPECT_EQ(3, PushText(stack, u"font"));
    EXPECT_EQ(u"font", PopText(stack));
    EXPECT_EQ(u"text", PopText(stack));
    EXPECT_EQ(u"size", PopText(stack));
    EXPECT_EQ(u"(0)", PopText(stack));
}

TEST(VariantStack, PopOnEmptyGivesNothing)
{
    VariantStack stack;
    Variant value{u"name", VariantUnsigned, 77};
    EXPECT_EQ(0, stack.Pop(&value));
    EXPECT_EQ(VariantUnsigned, static_cast<int>(value.type));
    EXPECT_EQ(77u, value.value);
    // Emptiness is looked at before the argument.
    EXPECT_EQ(0, stack.Pop(nullptr));
}

TEST(VariantStack, NullIsRefusedAndTakesNothing)
{
    VariantStack stack;
    EXPECT_EQ(-4, stack.Push(nullptr));
    ASSERT_EQ(3, PushText(stack, u"a"));
    EXPECT_EQ(-2, stack.Pop(nullptr));
    EXPECT_EQ(u"a", PopText(stack));
}

TEST(VariantStack, ATextPopsAsTheNumberThatItHolds)
{
    VariantStack stack;
    ASSERT_EQ(3, PushText(stack, u"24"));
    Variant value{nullptr, VariantUnsigned, 0};
    EXPECT_EQ(1, stack.Pop(&value));
    EXPECT_EQ(VariantUnsigned, static_cast<int>(value.type));
    EXPECT_EQ(24u, value.value);
}

TEST(VariantStack, ANumberPopsAsText)
{
    VariantStack stack;
    const Variant pushed = Number(4000000000u);
    ASSERT_EQ(3, stack.Push(&pushed));
    EXPECT_EQ(u"4000000000", PopText(stack));
}

TEST(VariantStack, AskedForNoTypeItGivesText)
{
    VariantStack stack;
    ASSERT_EQ(3, PushText(stack, u"a"));
    Variant value{nullptr, VariantNone, 0};
    EXPECT_EQ(1, stack.Pop(&value));
    EXPECT_EQ(VariantWide, static_cast<int>(value.type));
    EXPECT_EQ(std::u16string(u"a"), reinterpret_cast<const WCHAR*>(value.value));
}

TEST(VariantStack, LeavesTheNameOfTheRecordAlone)
{
    VariantStack stack;
    const WCHAR* const name = u"mine";
    const Variant pushed{name, VariantWide, reinterpret_cast<uintptr_t>(u"a")};
    ASSERT_EQ(3, stack.Push(&pushed));
    Variant value{name, VariantWide, 0};
    EXPECT_EQ(1, stack.Pop(&value));
    EXPECT_EQ(name, value.name);
}

TEST(VariantStack, CopiesWhatIsPushed)
{
    VariantStack stack;
    WCHAR text[] = u"before";
    ASSERT_EQ(3, PushText(stack, text));
    text[0] = u'x';
    EXPECT_EQ(u"before", PopText(stack));
}

TEST(VariantStack, AValueThatDoesNotConvertStays)
{
    VariantStack stack;
    ASSERT_EQ(3, PushText(stack, u"12x"));
    Variant value{nullptr, VariantUnsigned, 77};
    EXPECT_EQ(-100, stack.Pop(&value));
    EXPECT_EQ(VariantUnsigned, static_cast<int>(value.type));
    EXPECT_EQ(77u, value.value);
    EXPECT_EQ(u"12x", PopText(stack));
}

TEST(VariantStack, AnEmptyValueNeverPops)
{
    VariantStack stack;
    const Variant empty{nullptr, VariantNone, 0};
    ASSERT_EQ(3, stack.Push(&empty));
    for (u32 type : {0u, 1u, 3u}) {
        Variant value{nullptr, type, 77};
        EXPECT_EQ(-100, stack.Pop(&value));
        EXPECT_EQ(0u, value.type);
        EXPECT_EQ(0u, value.value);
    }
    EXPECT_EQ(1, stack.Clear());
    EXPECT_EQ(u"(0)", PopText(stack));
}

TEST(VariantStack, ARefusedValueLeavesTheStackAsItWas)
{
    VariantStack stack;
    ASSERT_EQ(3, PushText(stack, u"a"));
    f64 number = 1;
    const Variant real{nullptr, VariantDouble, reinterpret_cast<uintptr_t>(&number)};
    EXPECT_EQ(-99, stack.Push(&real));
    const Variant nothing{nullptr, VariantWide, 0};
    EXPECT_EQ(-1, stack.Push(&nothing));
    EXPECT_EQ(u"a", PopText(stack));
    EXPECT_EQ(u"(0)", PopText(stack));
}

TEST(VariantStack, APoppedTextLivesUntilThePushFromEmpty)
{
    FailingAllocator allocator;
    VariantStack stack(&allocator);
    ASSERT_EQ(3, PushText(stack, u"a"));
    ASSERT_EQ(3, PushText(stack, u"b"));
    Variant first{nullptr, VariantWide, 0};
    Variant second{nullptr, VariantWide, 0};
    ASSERT_EQ(1, stack.Pop(&first));
    ASSERT_EQ(1, stack.Pop(&second));
    EXPECT_EQ(std::u16string(u"b"), reinterpret_cast<const WCHAR*>(first.value));
    EXPECT_EQ(std::u16string(u"a"), reinterpret_cast<const WCHAR*>(second.value));
    const int held = allocator.Live();
    EXPECT_EQ(3, PushText(stack, u"c")) << "into a list that was cleared first";
    EXPECT_LT(allocator.Live(), held);
    EXPECT_EQ(u"c", PopText(stack));
    EXPECT_EQ(u"(0)", PopText(stack));
}

TEST(VariantStack, PushOverAPoppedValueReplacesIt)
{
    VariantStack stack;
    ASSERT_EQ(3, PushText(stack, u"a"));
    ASSERT_EQ(3, PushText(stack, u"b"));
    ASSERT_EQ(u"b", PopText(stack));
    EXPECT_EQ(5, PushText(stack, u"c"));
    EXPECT_EQ(u"c", PopText(stack));
    EXPECT_EQ(u"a", PopText(stack));
}

TEST(VariantStack, HoldsAsManyValuesAsItsList)
{
    VariantStack stack;
    for (u32 i = 0; i < 512; ++i) {
        const Variant value = Number(i);
        ASSERT_EQ(3, stack.Push(&value)) << i;
    }
    EXPECT_EQ(-1, PushText(stack, u"one more"));
    for (u32 i = 512; i-- > 0;) {
        Variant value{nullptr, VariantUnsigned, 0};
        ASSERT_EQ(1, stack.Pop(&value)) << i;
        ASSERT_EQ(i, value.value);
    }
    EXPECT_EQ(u"(0)", PopText(stack));
}

TEST(VariantStack, ClearEmptiesIt)
{
    VariantStack stack;
    EXPECT_EQ(1, stack.Clear());
    ASSERT_EQ(3, PushText(stack, u"a"));
    ASSERT_EQ(3, PushText(stack, u"b"));
    EXPECT_EQ(1, stack.Clear());
    EXPECT_EQ(u"(0)", PopText(stack));
    EXPECT_EQ(3, PushText(stack, u"c"));
    EXPECT_EQ(u"c", PopText(stack));
}

TEST(VariantStack, WithoutItsTableRefusesEveryValue)
{
    FailingAllocator allocator;
    allocator.AllowOnly(0);
    VariantStack stack(&allocator);
    allocator.AllowAll();
    EXPECT_EQ(-2, PushText(stack, u"a"));
    EXPECT_EQ(u"(0)", PopText(stack));
    EXPECT_EQ(1, stack.Clear());
}

TEST(VariantStack, SurvivesEveryShortageOfMemory)
{
    ForEveryFault(FaultKind::Allocation, [] {
        VariantStack stack;
        std::vector<const WCHAR*> pushed;
        for (const WCHAR* text : {u"size", u"text", u"font"}) {
            const i32 result = PushText(stack, text);
            EXPECT_TRUE(result == 3 || result == -2) << result;
            if (result > 0)
                pushed.push_back(text);
        }
        // What there was no memory for keeps its place and gives an error, never another's text.
        while (!pushed.empty()) {
            Variant value{nullptr, VariantWide, 0};
            const i32 result = stack.Pop(&value);
            if (result < 1) {
                EXPECT_TRUE(result == -10 || result == -100) << result;
                break;
            }
            EXPECT_EQ(std::u16string(pushed.back()), reinterpret_cast<const WCHAR*>(value.value));
            pushed.pop_back();
        }
        EXPECT_EQ(1, stack.Clear());
    });
}
