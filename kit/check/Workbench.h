// A loaded plugin on a workbench: its work is run on a worker thread while the main thread serves
// the message loop, as in the program, and what it leaves behind is looked at when it is unloaded.
// Pictures and streams of a check must be gone before the workbench is: declare it first.
#pragma once

#include "kit/check/HostilePictures.h"
#include "kit/check/HostileStreams.h"
#include "kit/check/PluginUnderCheck.h"
#include "kit/check/ProcessState.h"

#include <functional>
#include <string>

namespace plugincheck
{

class CheckContext;

class Workbench
{
public:
    /// Loads the plugin; the check ends here without a word if that fails, since the check of the
    /// loading has told so.
    explicit Workbench(CheckContext& context);
    ~Workbench();
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    /// The work of the kind on a picture that a user might have: GetImage from `source`, PutImage
    /// to a file of its own, the others in place (ScaleImage to half the size). `doing` continues
    /// the sentence "... while it".
    i32 Work(Raster* picture, ReadingStream* source, const Conditions& conditions,
             const std::string& doing);

    // The work by its kind.
    i32 Read(Raster* picture, ReadingStream* source, const Conditions& conditions,
             const std::string& doing);
    i32 Write(Raster* picture, const std::u16string& path, Stream* target,
              const Conditions& conditions, const std::string& doing);
    i32 Resize(Raster* picture, u32 width, u32 height, const Conditions& conditions,
               const std::string& doing);
    i32 Reduce(Raster* picture, u32 argument, const Conditions& conditions,
               const std::string& doing);
    i32 Other(const std::function<i32()>& call, const char* exportName,
              const Conditions& conditions, const std::string& doing);

    /// From the first dialog on the toolkit keeps threads, files and objects of its own, so what is
    /// left behind cannot be told.
    void KeepsToolkit() { toolkit = true; }
    PluginUnderCheck& Plugin() { return plugin; }
    /// A path for a file that does not exist yet, and the host's name of it.
    std::u16string FreshPath(std::string* host);

private:
    i32 Run(const std::function<i32()>& call, const char* exportName, const Conditions& conditions,
            const std::string& doing);
    void LookAtResult(const char* exportName, Raster* picture);
    void LookBehind();

    CheckContext& context;
    Holding before;
    PluginUnderCheck plugin;
    u32 files;
    bool toolkit;
};

/// The device path of a host file; empty when it has none.
std::u16string DevicePath(const std::string& host);

/// A stream that the plugin may make a picture of, with words for it.
struct Source {
    std::string words;
    std::vector<u8> bytes;
    bool isSample;
};
/// The samples; without any an empty stream and one of random bytes.
std::vector<Source> SourcesOf(const CheckContext& context);

/// Runs `body` for every source of an INPUT plugin, and for a picture of the shape otherwise.
/// `picture` comes made; `stream` is null unless the kind is INPUT.
struct Piece {
    std::string words;
    const Source* source;
};
void ForEachPiece(CheckContext& context, const PictureShape& shape,
                  const std::function<void(const Piece&)>& body);

} // namespace plugincheck
