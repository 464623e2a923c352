// Configure: that it is there, and what it answers to a user who agrees, one who cancels, and to a
// host that stores nothing.

#include "kit/check/Check.h"
#include "kit/check/DialogAnswers.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"

namespace plugincheck
{

namespace
{

struct Attempt {
    i32 result;
    u32 dialogs;
    u32 messages;
    bool forced;
};

Attempt RunConfigure(CheckContext& context, Workbench* bench, Raster* image, int answer,
                     const Conditions& conditions, const std::string& circumstances)
{
    const DialogAnswers answers(answer);
    WatchFor(&context, conditions);
    context.Doing("Configure", circumstances);
    const i32 result = bench->Plugin().Configure(image);
    context.DoingNothing();
    return {result, answers.Dialogs(), WhatWasSeen().messages, answers.WasForced()};
}

/// A plugin without Configure, and one that leaves things behind in the toolkit, are not for here.
bool CanConfigure(Workbench* bench)
{
    return bench->Plugin().Has("Configure");
}

std::string Result(i32 result)
{
    return "result " + std::to_string(result);
}

} // namespace

void CheckConfigureThere(CheckContext& context)
{
    Workbench bench(context);
    if (!CanConfigure(&bench))
        context.Violation("It does not export Configure, so the host warns the user at every use; "
                          "one that returns 1 is enough.");
}

void CheckConfirmed(CheckContext& context)
{
    Workbench bench(context);
    bench.KeepsToolkit();
    Raster image;
    if (!CanConfigure(&bench) || !MakePicture(&image, GoodShape))
        return;
    const Attempt done =
        RunConfigure(context, &bench, &image, IDOK, {}, "while its dialog was answered with OK");
    if (done.result < 0)
        context.Violation("Configure fails (" + Result(done.result) +
                          ") though nothing failed, and the host warns the user.");
    else if (done.result == 0 && done.dialogs == 0 && done.messages == 0)
        context.Violation(
            "Configure answers 0, \"cancelled\", without having asked anybody or told "
            "why, so the plugin can never be used; it has to answer 1.");
    else if (done.result == 0 && done.dialogs != 0 && !done.forced)
        context.Violation("Configure answers 0, \"cancelled\", to a dialog that was left with OK.");
}

void CheckCancelled(CheckContext& context)
{
    Workbench bench(context);
    bench.KeepsToolkit();
    Raster image;
    if (!CanConfigure(&bench) || !MakePicture(&image, GoodShape))
        return;
    const PictureState before = StateOf(&image);
    const Attempt done =
        RunConfigure(context, &bench, &image, IDCANCEL, {}, "while its dialog was cancelled");
    if (done.dialogs != 0 && done.result != 0)
        context.Violation("Configure answers " + std::to_string(done.result) +
                          " to a dialog that was cancelled; 0 ends the use.");
    if (done.dialogs != 0 && !(StateOf(&image) == before))
        context.Violation("Configure changes the picture though its dialog was cancelled.",
                          "picture");
}

void CheckQuiet(CheckContext& context)
{
    Workbench bench(context);
    bench.KeepsToolkit();
    if (!CanConfigure(&bench))
        return;
    const Attempt done =
        RunConfigure(context, &bench, nullptr, IDOK, {}, "while nothing was stored yet");
    if (done.dialogs != 0)
        context.Note(
            "Configure opens a dialog though no setting asks for one, so opening a picture "
            "asks the user every time.");
}

void CheckNoPicture(CheckContext& context)
{
    Workbench bench(context);
    bench.KeepsToolkit();
    if (!CanConfigure(&bench))
        return;
    {
        Raster image;
        (void)RunConfigure(context, &bench, &image, IDOK, {},
                           "with a picture that was never allocated");
    }
    (void)RunConfigure(context, &bench, nullptr, IDOK, {}, "without a picture");
}

void CheckConfigureRefused(CheckContext& context)
{
    Workbench bench(context);
    bench.KeepsToolkit();
    Raster image;
    if (!CanConfigure(&bench) || !MakePicture(&image, GoodShape))
        return;
    Conditions refused;
    refused.refuseProperties = true;
    for (const int answer : {IDOK, IDCANCEL})
        (void)RunConfigure(context, &bench, &image, answer, refused,
                           "while no setting could be read or stored");
}

} // namespace plugincheck
