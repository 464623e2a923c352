// What holds for the dialog of each adjustment.

#include "standard-plugins/tests/adjustments/AdjustDialog.h"

using namespace plugintest;
using namespace tavrix::testing;

namespace plugintest
{
// Its instances stand beside the plugins' own tests.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(AdjustDialog);
} // namespace plugintest

namespace
{

u32 OtherEnd(const AskedSetting& asked)
{
    return asked.standard == asked.most ? asked.least : asked.most;
}

std::vector<u32> Each(const DialogShape& shape, u32 (*value)(const AskedSetting&))
{
    std::vector<u32> values;
    for (const AskedSetting& asked : shape.settings)
        values.push_back(value(asked));
    return values;
}

std::vector<std::u16string> EachText(const DialogShape& shape,
                                     std::u16string (*text)(const AskedSetting&))
{
    std::vector<std::u16string> texts;
    for (const AskedSetting& asked : shape.settings)
        texts.push_back(text(asked));
    return texts;
}

} // namespace

TEST_P(AdjustDialog, ShowsItsStandardsAtFirst)
{
    const DialogShape& shape = GetParam();
    EXPECT_EQ(Ask(9,
                  [&](HWND dialog) {
                      EXPECT_EQ(BoxCaption(dialog), shape.caption);
                      EXPECT_EQ(ControlText(dialog, IDCANCEL), u"Cancel");
                      EXPECT_EQ(Shown(dialog),
                                Each(shape, [](const auto& asked) { return asked.standard; }));
                      EXPECT_EQ(Numbers(dialog), EachText(shape, [](const auto& asked) {
                                    return asked.standardText;
                                }));
                      Press(dialog, IDOK);
                  }),
              1);
    EXPECT_EQ(StoredValues(), Each(shape, [](const auto& asked) { return asked.standard; }));
}

TEST_P(AdjustDialog, OkStoresEverySettingAndTheNextTimeItIsShown)
{
    const std::vector<u32> others = Each(GetParam(), OtherEnd);
    EXPECT_EQ(Ask(9,
                  [&](HWND dialog) {
                      MoveAll(dialog);
                      EXPECT_EQ(Shown(dialog), others);
                      EXPECT_EQ(Numbers(dialog), EachText(GetParam(), [](const auto& asked) {
                                    return asked.standard == asked.most ? asked.leastText
                                                                        : asked.mostText;
                                }));
                      TypeKey(VK_RETURN);
                  }),
              1);
    EXPECT_EQ(StoredValues(), others);
    EXPECT_EQ(CurrentWriterHost().settings.size(), others.size());
    EXPECT_EQ(Ask(17,
                  [&](HWND dialog) {
                      EXPECT_EQ(Shown(dialog), others);
                      Press(dialog, IDCANCEL);
                  }),
              0);
}

TEST_P(AdjustDialog, CancelStoresNothing)
{
    for (const bool key : {false, true})
        EXPECT_EQ(Ask(9,
                      [&](HWND dialog) {
                          MoveAll(dialog);
                          if (key)
                              TypeKey(VK_ESCAPE);
                          else
                              Press(dialog, IDCANCEL);
                      }),
                  0);
    EXPECT_TRUE(CurrentWriterHost().settings.empty());
}

TEST_P(AdjustDialog, SpeaksJapaneseAndShowsWildStoredNumbersWithinTheRange)
{
    const DialogShape& shape = GetParam();
    for (const AskedSetting& asked : shape.settings)
        Set(asked.key, 4294967295u);
    EXPECT_EQ(Ask(17,
                  [&](HWND dialog) {
                      EXPECT_EQ(BoxCaption(dialog), shape.japaneseCaption);
                      EXPECT_EQ(ControlText(dialog, IDCANCEL), u"キャンセル");
                      EXPECT_EQ(Numbers(dialog),
                                EachText(shape, [](const auto& asked) { return asked.mostText; }));
                      Press(dialog, IDOK);
                  }),
              1);
    EXPECT_EQ(StoredValues(), Each(shape, [](const auto& asked) { return asked.most; }));
    for (const AskedSetting& asked : shape.settings)
        Set(asked.key, 0);
    EXPECT_EQ(Ask(17,
                  [&](HWND dialog) {
                      EXPECT_EQ(Numbers(dialog),
                                EachText(shape, [](const auto& asked) { return asked.leastText; }));
                      Press(dialog, IDOK);
                  }),
              1);
    EXPECT_EQ(StoredValues(), Each(shape, [](const auto& asked) { return asked.least; }));
}

TEST_P(AdjustDialog, PreviewShowsExactlyWhatWillBe)
{
    for (const u32 language : {9u, 17u}) {
        CurrentWriterHost().settings.clear();
        Pixels preview;
        EXPECT_EQ(Ask(language,
                      [&](HWND dialog) {
                          const Pixels first = PreviewOf(dialog);
                          EXPECT_EQ(first, Adjusted(width, height, Wild));
                          MoveAll(dialog);
                          preview = PreviewOf(dialog);
                          EXPECT_NE(preview, first);
                          Press(dialog, IDOK);
                      }),
                  1);
        EXPECT_EQ(Difference(preview, Adjusted(width, height, Wild)), "");
    }
}

TEST_P(AdjustDialog, SettingThatCannotBeStoredIsAFailure)
{
    CurrentWriterHost().storesNothing = true;
    EXPECT_EQ(Ask(9, [](HWND dialog) { Press(dialog, IDOK); }), -1);
    PluginCallbacks callbacks = WriterCallbacks();
    callbacks.get = nullptr;
    EXPECT_EQ(plugin.Configure(nullptr, nullptr, callbacks), -4);
}
