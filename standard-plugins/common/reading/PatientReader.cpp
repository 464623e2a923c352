#include "standard-plugins/common/reading/PatientReader.h"

#include <string.h>

namespace
{

constexpr uint32_t bytesBetween = 64 * 1024;

// Bytes of the buffer that are left, after a fill if there were none.
uint32_t Available(PatientReader* input)
{
    StreamReader& reader = input->reader;
    if (input->stopped)
        return 0;
    if (reader.taken == reader.filled) {
        if (input->quiet >= bytesBetween) {
            input->quiet = 0;
            input->stopped = !ReportProgressNow(&input->progress, input->step);
        }
        if (input->stopped || !FillReader(&reader))
            return 0;
        input->quiet += reader.filled;
    }
    return reader.filled - reader.taken;
}

} // namespace

int32_t OpenPatientReader(PatientReader* input, PluginStreamRecord* stream,
                          TavrixProgressCallback progress)
{
    *input = {};
    StartProgress(&input->progress, progress, patientSteps);
    return OpenReader(&input->reader, stream);
}

void ClosePatientReader(PatientReader* input)
{
    CloseReader(&input->reader);
    *input = {};
}

size_t ReadPatiently(PatientReader* input, uint8_t* out, size_t count)
{
    size_t got = 0;
    while (got < count) {
        const uint32_t available = Available(input);
        if (available == 0)
            break;
        const size_t run = count - got < available ? count - got : available;
        memcpy(out + got, input->reader.buffer + input->reader.taken, run);
        input->reader.taken += static_cast<uint32_t>(run);
        got += run;
    }
    return got;
}

bool SkipPatiently(PatientReader* input, uint64_t count)
{
    while (count > 0) {
        const uint32_t available = Available(input);
        if (available == 0)
            return false;
        const uint64_t run = count < available ? count : available;
        input->reader.taken += static_cast<uint32_t>(run);
        count -= run;
    }
    return true;
}

bool ReportPatiently(PatientReader* input, uint64_t done, uint64_t total)
{
    input->step = static_cast<uint32_t>(done * patientSteps / total);
    if (!ReportProgress(&input->progress, input->step))
        input->stopped = true;
    return !input->stopped;
}
