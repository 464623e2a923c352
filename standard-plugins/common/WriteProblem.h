// What can go wrong when a picture is written, printed or changed, once for all plugins that do:
// each problem has a result for the host and a sentence for the user in both languages. The pieces
// that work (PictureReader, PictureLines, OutputFile) only note the problem; the plugin tells it
// once, at its end, when everything has been given back.
#pragma once

#include "standard-plugins/common/PluginInfo.h"

enum class WriteProblem : uint8_t {
    None,
    Stopped,   // the user gave up, and knows it
    Arguments, // a null pointer or a table without the functions used here
    Empty,     // a picture without pixels
    Depth,     // a depth that says nothing about colours
    Size,      // sides that the format cannot hold; each format has a sentence of its own
    Line,      // a line could not be locked
    Memory,    // none left
    Folder,    // the folder is not there, or the path is too long
    Protected, // the folder takes no files, or the file may not be written
    Making,    // a file could not be made for another reason
    DiskFull,  // fewer bytes were taken than given
    Writing,   // bytes were refused for another reason
    Replacing, // the finished file could not take its place
    Codec,     // the format's library gave up
    TrueColor, // a picture that is to be changed has not 24 bits a pixel
    NewSize,   // a new size without pixels, or beyond what pictures can have
    Missing,   // a library that does the work is not installed
    Scaling,   // the library that scales gave up
    Stream     // the format needs a file, and was given a stream
};

/// The negative result by which a processing export answers; PluginDone for None.
int32_t ResultOf(WriteProblem problem);
/// The sentence; empty texts for None, Stopped, Arguments and Size.
const BilingualText& TextOf(WriteProblem problem);
/// Tells the user, with the stop icon; nothing for problems without a sentence or without
/// `message`. During a processing export this takes two seconds.
void TellProblem(WriteProblem problem, const BilingualText& caption, TavrixMessageCallback message);
/// The same with a sentence of the plugin's own.
void TellText(const BilingualText& text, const BilingualText& caption,
              TavrixMessageCallback message);
