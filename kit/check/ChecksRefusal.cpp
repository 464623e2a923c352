// What every kind has to bear: a user who gives up, memory that runs short, settings that cannot be
// had, and being called a second time.

#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"

#include <memory>

namespace plugincheck
{

namespace
{

/// Reports that a plugin may still make once it was told to stop.
constexpr u32 ReportsAllowed = 4;

struct Run {
    bool made;
    i32 result;
    Seen seen;
    PictureState state;
};

Run RunOnce(CheckContext& context, Workbench* bench, const Piece& piece, const PictureShape& shape,
            const Conditions& conditions, const std::string& doing)
{
    Raster picture;
    std::unique_ptr<ReadingStream> stream;
    if (piece.source != nullptr)
        stream = std::make_unique<ReadingStream>(piece.source->bytes);
    else if (!MakePicture(&picture, shape))
        return {false, -1, {}, {}};
    const i32 result =
        bench->Work(&picture, stream.get(), conditions,
                    (context.plugin.kind == Input ? "read " : "worked on ") + piece.words + doing);
    return {true, result, WhatWasSeen(), StateOf(&picture)};
}

std::string Work(const CheckContext& context)
{
    return WorkExport(context.plugin.kind);
}

} // namespace

void CheckProgress(CheckContext& context)
{
    Workbench bench(context);
    ForEachPiece(context, LargeShape, [&](const Piece& piece) {
        const Run run = RunOnce(context, &bench, piece, LargeShape, {}, "");
        if (!run.made || run.result < 0 || run.seen.progress != 0)
            return;
        const std::string text = Work(context) +
                                 " never calls the progress callback, so the user sees no bar and "
                                 "cannot stop it.";
        if (context.plugin.kind == Input)
            context.Violation(text);
        else
            context.Note(text);
    });
}

void CheckRefusal(CheckContext& context)
{
    Workbench bench(context);
    ForEachPiece(context, LargeShape, [&](const Piece& piece) {
        const Run whole = RunOnce(context, &bench, piece, LargeShape, {}, "");
        if (!whole.made || whole.result < 0)
            return;
        for (const u32 report : {1U, 2U, whole.seen.progress / 2, whole.seen.progress}) {
            if (report == 0 || report > whole.seen.progress)
                continue;
            Conditions stop;
            stop.refuseProgressFrom = report;
            const Run run = RunOnce(context, &bench, piece, LargeShape, stop,
                                    ", and the user gave up at report " + std::to_string(report));
            if (run.seen.progress < report)
                continue;
            if (run.result >= 0 && context.plugin.kind != Print)
                context.Violation(Work(context) + " reports success (result " +
                                      std::to_string(run.result) +
                                      ") though the progress callback told it to stop.",
                                  "result");
            if (run.seen.progressBehindRefusal > ReportsAllowed)
                context.Violation(Work(context) + " goes on for " +
                                      Counted(run.seen.progressBehindRefusal, "report") +
                                      " behind the one at which the progress callback told it to "
                                      "stop.",
                                  "late");
        }
    });
}

void CheckLockRefusal(CheckContext& context)
{
    Workbench bench(context);
    ForEachPiece(context, GoodShape, [&](const Piece& piece) {
        for (const u32 from : {1U, 2U, 3U, 10U, 23U}) {
            Conditions refused;
            refused.refuseLocksFrom = from;
            const Run run = RunOnce(context, &bench, piece, GoodShape, refused,
                                    " whose lines could not be locked from lock " +
                                        std::to_string(from) + " on");
            if (run.made && run.seen.refusedLocks != 0 && run.result >= 0 &&
                context.plugin.kind != Print) {
                context.Violation(Work(context) + " reports success (result " +
                                  std::to_string(run.result) +
                                  ") though RasterLockLines gave it no line; a result of 0 from it "
                                  "is a failure too.");
                return;
            }
        }
    });
}

void CheckAllocRefusal(CheckContext& context)
{
    Workbench bench(context);
    ForEachPiece(context, GoodShape, [&](const Piece& piece) {
        for (const bool objects : {false, true}) {
            Conditions refused;
            refused.refuseAllocations = !objects;
            refused.refuseObjects = objects;
            const Run run = RunOnce(context, &bench, piece, GoodShape, refused,
                                    objects ? ", and could make no picture or palette"
                                            : ", and could allocate no lines");
            if (run.made && run.seen.refusedAllocations != 0 && run.result >= 0 &&
                context.plugin.kind != Print) {
                context.Violation(Work(context) + " reports success (result " +
                                  std::to_string(run.result) + ") though RasterAlloc failed.");
                return;
            }
        }
    });
}

void CheckPropertyRefusal(CheckContext& context)
{
    Workbench bench(context);
    ForEachPiece(context, GoodShape, [&](const Piece& piece) {
        const Run plain = RunOnce(context, &bench, piece, GoodShape, {}, "");
        Conditions refused;
        refused.refuseProperties = true;
        const Run run = RunOnce(context, &bench, piece, GoodShape, refused,
                                ", and no setting could be read or stored");
        if (plain.made && plain.result >= 0 && run.result < 0)
            context.Violation(Work(context) + " fails (result " + std::to_string(run.result) +
                              ") where no setting can be read or stored; at its first use there "
                              "are none.");
    });
}

void CheckPaging(CheckContext& context)
{
    Workbench bench(context);
    std::string outcome;
    ForEachPiece(context, LargeShape, [&](const Piece& piece) {
        const Run run = RunOnce(context, &bench, piece, LargeShape, {}, "");
        // To run out of memory is no fault; to make another picture is.
        outcome += (run.made && run.result >= 0 ? Fingerprint(run.state) : "refused") + " ";
    });
    context.Outcome(outcome);
}

void CheckTwice(CheckContext& context)
{
    Workbench bench(context);
    ForEachPiece(context, GoodShape, [&](const Piece& piece) {
        const Run first = RunOnce(context, &bench, piece, GoodShape, {}, "");
        const Run second = RunOnce(context, &bench, piece, GoodShape, {}, " a second time");
        if (!first.made || !second.made)
            return;
        if ((first.result < 0) != (second.result < 0) || !(first.state == second.state))
            context.Violation(Work(context) +
                              " gives another outcome when it is called a second "
                              "time with the same " +
                              (context.plugin.kind == Input ? "stream." : "picture."));
    });
}

} // namespace plugincheck
