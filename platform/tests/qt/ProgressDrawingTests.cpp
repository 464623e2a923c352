// How often the progress bar draws what is reported.
#include "platform/qt/Window.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"

#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include <QEvent>
#include <QObject>
#include <QWidget>

#include <chrono>

using namespace tavrix::testing;

namespace
{

constexpr int Positions = 300;

class DrawingCounter : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        drawings += event->type() == QEvent::Paint;
        return false;
    }
    int drawings = 0;
};

INT_PTR CALLBACK Procedure(HWND, UINT message, WPARAM, LPARAM)
{
    return message == WM_INITDIALOG;
}

class ProgressDrawing : public ::testing::Test
{
protected:
    ProgressDrawing()
    {
        dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr,
                                            Procedure, 0);
        bar = GetDlgItem(dialog, 1000);
        SendMessageW(bar, PBM_SETRANGE, 0, MAKELPARAM(0, Positions));
        ShowWindow(dialog, SW_SHOW);
        Pump(50);
        tavrix::platform::FindWindowRecord(bar)->widget->installEventFilter(&counter);
    }
    ~ProgressDrawing() override { DestroyWindow(dialog); }

    /// How much of the bar is filled, in positions.
    int Filled() const
    {
        const Picture picture = WindowPixels(bar);
        int filled = 0;
        for (int x = 1; x < picture.width - 1; ++x)
            filled += picture.At(x, picture.height / 2) != 0xFFFFFF;
        return filled * Positions / (picture.width - 2);
    }

    Scope scope;
    HWND dialog = nullptr;
    HWND bar = nullptr;
    DrawingCounter counter;
};

TEST_F(ProgressDrawing, ReportsInARowAreDrawnNoMoreOftenThanADisplayShowsThem)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 1; i < Positions; ++i) {
        SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(i), 0);
        Pump(0);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    const int drawings = counter.drawings;
    EXPECT_LE(drawings, taken.count() / 0.015 + 1);
    SendMessageW(bar, PBM_SETPOS, Positions, 0);
    EXPECT_TRUE(PumpUntil([&] { return counter.drawings > drawings; }))
        << "the last report is drawn, too";
    EXPECT_EQ(Filled(), Positions);
}

TEST_F(ProgressDrawing, AReportBehindAPauseIsDrawnAtOnce)
{
    for (const WPARAM position : {100, 200, 300}) {
        Pump(30);
        const int before = counter.drawings;
        SendMessageW(bar, PBM_SETPOS, position, 0);
        EXPECT_EQ(counter.drawings, before) << "not before the answer";
        Pump(0);
        EXPECT_EQ(counter.drawings, before + 1);
    }
}

TEST_F(ProgressDrawing, WhatMovesNoPixelIsNotDrawn)
{
    Pump(30);
    SendMessageW(bar, PBM_SETPOS, 150, 0);
    Pump(30);
    const int before = counter.drawings;
    SendMessageW(bar, PBM_SETPOS, 150, 0);
    Pump(30);
    EXPECT_EQ(counter.drawings, before);
}

} // namespace
