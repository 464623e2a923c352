// A StreamReader whose waiting can be given up: a stream may bring bytes for hours that make no
// line, and no line means no progress. Once in 64 KB the progress callback is asked where the work
// stands.
//
// The progress runs over `patientSteps`, however large the picture is, since it is asked before the
// size is known. Plain data; zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/StreamReader.h"

constexpr uint32_t patientSteps = 1000;

struct PatientReader {
    StreamReader reader;
    ProgressThrottle progress;
    /// Steps told last.
    uint32_t step;
    /// Bytes that came since somebody was asked.
    uint32_t quiet;
    /// The user gave up: nothing comes any more.
    bool stopped;
};

/// The results of OpenReader.
int32_t OpenPatientReader(PatientReader* input, PluginStreamRecord* stream,
                          TavrixProgressCallback progress);
void ClosePatientReader(PatientReader* input);
/// Gives how many bytes came; fewer than `count` only at the end or when the user gave up.
size_t ReadPatiently(PatientReader* input, uint8_t* out, size_t count);
/// False when fewer than `count` bytes are left or the user gave up.
bool SkipPatiently(PatientReader* input, uint64_t count);
/// `done` of `total` is finished, total at least 1. False when the user gave up.
bool ReportPatiently(PatientReader* input, uint64_t done, uint64_t total);
