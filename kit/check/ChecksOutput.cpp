// OUTPUT: files and streams that take what is written, some of it, or nothing; and the picture,
// which is not the plugin's to change.

#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"

#include <filesystem>

namespace plugincheck
{

namespace
{

constexpr u32 MostSteps = 60;

struct Writing {
    bool made; // the picture could be made
    i32 result;
    bool unchanged;
};

Writing WriteOnce(Workbench* bench, const PictureShape& shape, const std::u16string& path,
                  WritingStream* stream, const std::string& doing)
{
    Raster picture;
    if (!MakePicture(&picture, shape))
        return {false, 0, true};
    const PictureState before = StateOf(&picture);
    const i32 result = bench->Write(&picture, path, stream, {}, doing);
    return {true, result, StateOf(&picture) == before};
}

} // namespace

void CheckUnchanged(CheckContext& context)
{
    Workbench bench(context);
    std::vector<PictureShape> shapes = OddShapes();
    shapes.push_back(GoodShape);
    for (const PictureShape& shape : shapes) {
        const Writing toFile = WriteOnce(&bench, shape, bench.FreshPath(nullptr), nullptr,
                                         std::string("wrote ") + shape.words + " to a file");
        WritingStream stream;
        const Writing toStream = WriteOnce(&bench, shape, {}, &stream,
                                           std::string("wrote ") + shape.words + " to a stream");
        if (!toFile.unchanged || !toStream.unchanged) {
            context.Violation(std::string("PutImage changes the picture that it writes (") +
                              shape.words + ").");
            return;
        }
    }
}

void CheckStreamForm(CheckContext& context)
{
    Workbench bench(context);
    std::string host;
    const std::u16string path = bench.FreshPath(&host);
    const Writing toFile =
        WriteOnce(&bench, GoodShape, path, nullptr, "wrote a good picture to a file");
    std::error_code error;
    const auto size = std::filesystem::file_size(host, error);
    if (toFile.made && toFile.result >= 0 && (error || size == 0))
        context.Violation(std::string("PutImage reports success and ") +
                              (error ? "makes no file." : "leaves the file empty."),
                          "file");
    WritingStream stream;
    const Writing toStream =
        WriteOnce(&bench, GoodShape, {}, &stream, "wrote a good picture to a stream");
    if (toStream.made && toStream.result >= 0 && stream.bytes.empty())
        context.Violation("PutImage reports success and writes nothing to its stream; a plugin "
                          "that cannot write to a stream answers with a negative result.",
                          "stream");
}

void CheckCountingStream(CheckContext& context)
{
    Workbench bench(context);
    WritingStream kept;
    const Writing whole =
        WriteOnce(&bench, GoodShape, {}, &kept, "wrote a good picture to a stream");
    WritingStream counted;
    counted.keeps = false;
    const Writing counting =
        WriteOnce(&bench, GoodShape, {}, &counted,
                  "wrote a good picture to a stream that stores nothing and refuses reads");
    if (counting.result < 0)
        return;
    if (counted.refusedReads != 0)
        context.Violation("PutImage reports success though it could not read back what it had "
                          "written; the host's trial save gives it such a stream.");
    else if (whole.result >= 0 && counted.size != kept.size)
        context.Violation("PutImage writes " + Counted(counted.size, "byte") +
                          " to a stream that only counts and " + std::to_string(kept.size) +
                          " to one that keeps them.");
}

void CheckFailingWrites(CheckContext& context)
{
    Workbench bench(context);
    WritingStream good;
    if (WriteOnce(&bench, GoodShape, {}, &good, "wrote a good picture to a stream").result < 0)
        return;
    const u32 stride = good.writes / MostSteps + 1;
    for (u32 step = 1; step <= good.writes; step += stride) {
        WritingStream stream;
        stream.failFrom = step;
        const Writing writing = WriteOnce(&bench, GoodShape, {}, &stream,
                                          "wrote to a stream of which write " +
                                              std::to_string(step) + " and all behind it failed");
        if (stream.refused != 0 && writing.result >= 0) {
            context.Violation("PutImage reports success (result " + std::to_string(writing.result) +
                              ") though write " + std::to_string(step) + " of its stream failed.");
            return;
        }
    }
}

void CheckFullStream(CheckContext& context)
{
    Workbench bench(context);
    WritingStream good;
    if (WriteOnce(&bench, GoodShape, {}, &good, "wrote a good picture to a stream").result < 0)
        return;
    for (u32 step = 0; step < MostSteps; ++step) {
        WritingStream stream;
        stream.room = good.size * step / MostSteps;
        const Writing writing =
            WriteOnce(&bench, GoodShape, {}, &stream,
                      "wrote to a stream that had room for " + Counted(stream.room, "byte"));
        if (stream.refused != 0 && writing.result >= 0) {
            context.Violation("PutImage reports success (result " + std::to_string(writing.result) +
                              ") though its stream was full: a write took fewer bytes than it was "
                              "given.");
            return;
        }
    }
}

void CheckBadPath(CheckContext& context)
{
    Workbench bench(context);
    for (const WCHAR* path : {TEXT("\\no such folder\\picture.out"), TEXT("\\"), TEXT("")}) {
        const Writing writing =
            WriteOnce(&bench, GoodShape, path, nullptr, "wrote to the path " + Quoted(Utf8(path)));
        if (writing.made && writing.result >= 0) {
            context.Violation("PutImage reports success (result " + std::to_string(writing.result) +
                              ") for the path " + Quoted(Utf8(path)) +
                              ", where no file can be made.");
            return;
        }
    }
}

} // namespace plugincheck
