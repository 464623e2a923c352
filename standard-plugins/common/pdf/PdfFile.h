// The skeleton of a PDF file: bytes in one direction, objects by number, the table of where they
// lie. It keeps the offsets and nothing else, and never goes back.
//
// A failure is remembered: after the first one nothing more is written, so that a writer need look
// only once, at its end. Text is written in ASCII; numbers never by way of a floating point or a
// locale.
#pragma once

#include <tavrix/plugin.h>

/// Where the bytes go. Answers whether all of them were taken.
struct ByteSink {
    void* context;
    bool (*write)(void* context, const void* bytes, uint32_t count);
};

constexpr uint32_t pdfObjectLimit = 15;

/// Plain data, nothing to give back.
struct PdfFile {
    ByteSink sink;
    /// Bytes written.
    uint64_t length;
    /// Where each object begins, by its number; 0 for one that was not written.
    uint64_t offsets[pdfObjectLimit + 1];
    bool failed;
    /// The failure is that the file would be longer than its table can tell.
    bool isTooLong;
};

/// Starts a file with its first two lines.
void StartPdf(PdfFile* file, const ByteSink& sink);
void PutBytes(PdfFile* file, const void* bytes, uint32_t count);
void PutText(PdfFile* file, const char* text);
void PutNumber(PdfFile* file, uint64_t number);
/// `digits` digits with zeros in front; higher digits of `number` are cut off.
void PutDigits(PdfFile* file, uint64_t number, uint32_t digits);
/// Hundredths of a point as points with two decimals.
void PutPoints(PdfFile* file, uint32_t hundredths);
/// A text string: as it is where it is ASCII, else as two bytes a character with their mark in
/// front. Half a pair becomes U+FFFD.
void PutString(PdfFile* file, const TavrixChar* text);

/// Begins object `number`, from 1 to pdfObjectLimit, each at most once and in any order.
void BeginObject(PdfFile* file, uint32_t number);
void EndObject(PdfFile* file);
/// The table of objects 1 to `count` and the trailer, in which object `root` is the catalogue and
/// `info` the description. Answers whether the whole file was written.
bool FinishPdf(PdfFile* file, uint32_t count, uint32_t root, uint32_t info);
