// What can go wrong with the printing system, and how the user is told.
#pragma once

#include "standard-plugins/common/PluginInfo.h"

enum class CupsProblem : uint8_t {
    None,
    Library,    // the library is not installed
    Server,     // the printing system does not answer
    NoPrinters, // it has none
    Unknown,    // it has not the one that was chosen
    Refused,    // it does not take the job
    Lost        // the connection broke off, or went silent, in the middle of the job
};

/// The sentence; empty for None.
const BilingualText& TextOf(CupsProblem problem);
