// Resources: the compiled format, the choice of a language, and survival of bytes that are none.

#include "platform/core/Resources.h"
#include "platform/host/Resources.h"
#include "platform/testing/Testing.h"
#include "platform/tests/core/ResourceBytes.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace
{

using tavrix::platform::ParseResources;
using tavrix::platform::ResourceRecord;
using tavrix::testing::Scope;
using tavrix::testing::SetLanguage;

/// Bytes as the program's resources, for the time of a scope.
class Registered
{
public:
    explicit Registered(const ResourceBytes& resources, HINSTANCE moduleInstance = nullptr)
        : bytes(resources.Bytes()), instance(moduleInstance)
    {
        TavrixRegisterResources(instance, bytes.data(), bytes.data() + bytes.size());
    }
    ~Registered() { TavrixRegisterResources(instance, nullptr, nullptr); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

private:
    std::vector<std::byte> bytes;
    HINSTANCE instance;
};

std::string Data(LPCWSTR name, LPCWSTR type, HMODULE module = nullptr)
{
    const HRSRC resource = FindResourceW(module, name, type);
    if (resource == nullptr)
        return "(none)";
    const void* bytes = LockResource(LoadResource(module, resource));
    return std::string(static_cast<const char*>(bytes), SizeofResource(module, resource));
}

TEST(Resources, TypeAndNameAreKeysOfTheirOwn)
{
    const Registered registered(ResourceBytes()
                                    .Add(4, 100, 0, "menu")
                                    .Add(5, 100, 0, "a dialog")
                                    .Add(4, 101, 0, "other menu")
                                    .Add(u"BINARY", 100, 0, "text type")
                                    .Add(10, u"NAMED", 0, "text name"));
    EXPECT_EQ(Data(MAKEINTRESOURCEW(100), RT_MENU), "menu");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(100), RT_DIALOG), "a dialog");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(101), RT_MENU), "other menu");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(100), TEXT("BINARY")), "text type");
    EXPECT_EQ(Data(TEXT("NAMED"), RT_RCDATA), "text name");
    // The program's instance and null are one module.
    EXPECT_EQ(Data(MAKEINTRESOURCEW(100), RT_MENU, GetModuleHandleW(nullptr)), "menu");
}

TEST(Resources, TextsAreComparedWithoutRegardToCaseAndNumbersMayBeSpelled)
{
    const Registered registered(
        ResourceBytes().Add(u"BINARY", u"Picture", 0, "p").Add(u"binary", 7, 0, "seven"));
    EXPECT_EQ(Data(TEXT("pICTURE"), TEXT("binary")), "p");
    EXPECT_EQ(Data(TEXT("#7"), TEXT("Binary")), "seven");
    EXPECT_EQ(Data(TEXT("#7x"), TEXT("binary")), "(none)");
    EXPECT_EQ(Data(TEXT("#65543"), TEXT("binary")), "(none)"); // 7 + 65536
    EXPECT_EQ(Data(TEXT("#"), TEXT("binary")), "(none)");
}

TEST(Resources, TheLanguageOfTheDeviceComesFirstThenNeutralThenAny)
{
    const Scope scope;
    const Registered registered(ResourceBytes()
                                    .Add(4, 1, 1033, "english")
                                    .Add(4, 1, 1041, "japanese")
                                    .Add(4, 2, 1033, "english")
                                    .Add(4, 2, 0, "neutral")
                                    .Add(4, 3, 1036, "french")
                                    .Add(4, 3, 1031, "german")
                                    .Add(4, 4, 0, "neutral")
                                    .Add(4, 4, 2057, "british"));
    SetLanguage(1041);
    EXPECT_EQ(Data(MAKEINTRESOURCEW(1), RT_MENU), "japanese");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(2), RT_MENU), "neutral");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(3), RT_MENU), "french");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(4), RT_MENU), "neutral");
    SetLanguage(1033);
    EXPECT_EQ(Data(MAKEINTRESOURCEW(1), RT_MENU), "english");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(2), RT_MENU), "english");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(3), RT_MENU), "french");
    EXPECT_EQ(Data(MAKEINTRESOURCEW(4), RT_MENU), "british");
}

TEST(Resources, DataOfAnyLengthIsWholeAndWhatFollowsItIsFound)
{
    ResourceBytes resources;
    for (int size = 0; size < 9; ++size)
        resources.Add(10, size + 1, 0, std::string(static_cast<size_t>(size), 'd'));
    const Registered registered(resources);
    for (int size = 0; size < 9; ++size)
        EXPECT_EQ(Data(MAKEINTRESOURCEW(size + 1), RT_RCDATA),
                  std::string(static_cast<size_t>(size), 'd'));
}

TEST(Resources, WhatIsNotThereIsTold)
{
    EXPECT_EQ(FindResourceW(nullptr, MAKEINTRESOURCEW(1), RT_MENU), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_DATA_NOT_FOUND);
    const Registered registered(ResourceBytes().Add(4, 1, 0, "menu"));
    EXPECT_EQ(FindResourceW(nullptr, MAKEINTRESOURCEW(2), RT_MENU), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(FindResourceW(nullptr, MAKEINTRESOURCEW(1), RT_DIALOG), nullptr);
    EXPECT_EQ(GetLastError(), 1813u);
    // The empty record that opens the file is no resource.
    EXPECT_EQ(FindResourceW(nullptr, nullptr, nullptr), nullptr);
}

TEST(Resources, AHandleThatIsNoneOfTheModulesIsRefused)
{
    int place = 0;
    const HINSTANCE other = reinterpret_cast<HINSTANCE>(&place);
    const Registered registered(ResourceBytes().Add(4, 1, 0, "menu"));
    const Registered others(ResourceBytes().Add(4, 1, 0, "other's"), other);
    const HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(1), RT_MENU);
    ASSERT_NE(resource, nullptr);
    EXPECT_EQ(Data(MAKEINTRESOURCEW(1), RT_MENU, other), "other's");
    EXPECT_EQ(LoadResource(other, resource), nullptr);
    EXPECT_EQ(SizeofResource(other, resource), 0u);
    EXPECT_EQ(LoadResource(nullptr, nullptr), nullptr);
    EXPECT_EQ(SizeofResource(nullptr, nullptr), 0u);
    EXPECT_EQ(LockResource(nullptr), nullptr);
}

TEST(Resources, TakingThemAwayLeavesNone)
{
    {
        const Registered registered(ResourceBytes().Add(4, 1, 0, "menu"));
        EXPECT_EQ(Data(MAKEINTRESOURCEW(1), RT_MENU), "menu");
    }
    EXPECT_EQ(Data(MAKEINTRESOURCEW(1), RT_MENU), "(none)");
}

/// Parses bytes in a block of their exact size and touches every byte of every record.
size_t CountTouched(const std::string& bytes)
{
    const std::vector<std::byte> exact(reinterpret_cast<const std::byte*>(bytes.data()),
                                       reinterpret_cast<const std::byte*>(bytes.data()) +
                                           bytes.size());
    unsigned sum = 0;
    const std::vector<ResourceRecord> records =
        ParseResources(exact.data(), exact.data() + exact.size());
    for (const ResourceRecord& record : records)
        for (DWORD at = 0; at < record.size; ++at)
            sum += static_cast<unsigned>(record.data[at]);
    EXPECT_LT(sum, 0xFFFFFFFFu);
    return records.size();
}

ResourceBytes ValidResources()
{
    return ResourceBytes()
        .Add(4, 100, 1033, "some menu")
        .Add(u"BINARY", u"NAME", 0, "named data")
        .Add(5, 200, 1041, std::string(70, 'x'));
}

TEST(Resources, ATruncatedFileGivesWhatIsWholeAndIsNeverReadPastItsEnd)
{
    const std::string whole = ValidResources().Text();
    size_t before = 0;
    for (size_t length = 0; length <= whole.size(); ++length) {
        const size_t count = CountTouched(whole.substr(0, length));
        EXPECT_GE(count, before);
        before = count;
    }
    EXPECT_EQ(before, 3u);
}

TEST(Resources, SpoiledBytesAreSurvived)
{
    const std::string whole = ValidResources().Text();
    // Each byte in turn at its extremes: sizes of nothing, sizes past the end, texts without end.
    for (size_t at = 0; at < whole.size(); ++at)
        for (const char value : {'\x00', '\x01', '\x7F', '\x80', '\xFF'}) {
            std::string spoiled = whole;
            spoiled[at] = value;
            EXPECT_LE(CountTouched(spoiled), whole.size() / 16);
        }
    std::mt19937 random(20);
    for (int round = 0; round < 3000; ++round) {
        std::string spoiled = whole;
        for (int change = 0; change < 5; ++change)
            spoiled[random() % spoiled.size()] = static_cast<char>(random());
        EXPECT_LE(CountTouched(spoiled.substr(0, 1 + random() % spoiled.size())),
                  whole.size() / 16);
    }
    for (int round = 0; round < 1000; ++round) {
        std::string noise(random() % 300, 0);
        for (char& byte : noise)
            byte = static_cast<char>(random());
        EXPECT_LE(CountTouched(noise), noise.size() / 16);
    }
}

TEST(Resources, ARecordOfNoSizeDoesNotHoldTheParserForEver)
{
    EXPECT_EQ(CountTouched(std::string(4096, '\0')), 0u);
    EXPECT_TRUE(ParseResources(nullptr, nullptr).empty());
}

} // namespace
