#include "standard-plugins/cups-print/CupsJob.h"

#include <stdlib.h>

namespace
{

// Seconds. A printing system that works may take longer over a document than over a question.
constexpr double longestSilence = 15;

// To be added in the order of their names, by which the library searches. It changes none of the
// texts, though its record would let it.
struct Options {
    cups_option_t items[3];
    int count;
};

void AddOption(Options* options, const char* name, const char* value)
{
    options->items[options->count++] = {const_cast<char*>(name), const_cast<char*>(value)};
}

// What the connection still holds is no answer, so only its error tells a break from a refusal.
CupsProblem ReasonOf(const CupsJob& job)
{
    return job.server->cups.error(job.server->http) != 0 ? CupsProblem::Lost : CupsProblem::Refused;
}

bool FindDestination(CupsJob* job, const char* printer)
{
    const CupsLibrary& cups = job->server->cups;
    http_t* http = job->server->http;
    job->destination = cups.namedDestination(http, printer, nullptr);
    if (job->destination)
        job->info = cups.destinationInfo(http, job->destination);
    return job->info != nullptr;
}

// The other connection is in the middle of a request. The cancelling comes first: what the printing
// system has of the document when that connection ends is then of no job any more.
void CancelJob(CupsJob* job)
{
    CupsServer* server = job->server;
    http_t* http = ConnectAgain(server);
    if (!http)
        return;
    (void)server->cups.cancelJob(http, job->destination, job->id);
    server->cups.close(http);
}

} // namespace

CupsProblem StartJob(CupsJob* job, CupsServer* server, const JobOptions& options)
{
    *job = {};
    job->server = server;
    const CupsLibrary& cups = server->cups;
    cups.setTimeout(server->http, longestSilence, nullptr, nullptr);
    if (!FindDestination(job, options.printer))
        return ReasonOf(*job) == CupsProblem::Lost ? CupsProblem::Lost : CupsProblem::Unknown;
    const char copies[] = {static_cast<char>('0' + options.copies / 10 % 10),
                           static_cast<char>('0' + options.copies % 10), 0};
    Options chosen = {};
    AddOption(&chosen, "copies", copies[0] == '0' ? copies + 1 : copies);
    AddOption(&chosen, "media", options.media);
    // The page is laid out; a printer that fits it to its paper once more would spoil the size.
    AddOption(&chosen, "print-scaling", "none");
    const ipp_status_t status = cups.createJob(server->http, job->destination, job->info, &job->id,
                                               options.title, chosen.count, chosen.items);
    if (status >= IPP_STATUS_ERROR_BAD_REQUEST || status < IPP_STATUS_OK || job->id <= 0)
        return ReasonOf(*job);
    const http_status_t answer =
        cups.startDocument(server->http, job->destination, job->info, job->id, options.title,
                           CUPS_FORMAT_PDF, 0, nullptr, 1);
    return answer == HTTP_STATUS_CONTINUE ? CupsProblem::None : ReasonOf(*job);
}

bool WriteToJob(CupsJob* job, const void* bytes, uint32_t count)
{
    const http_status_t answer =
        job->server->cups.writeData(job->server->http, static_cast<const char*>(bytes), count);
    if (answer == HTTP_STATUS_CONTINUE)
        return true;
    job->problem = ReasonOf(*job);
    return false;
}

CupsProblem FinishJob(CupsJob* job)
{
    const ipp_status_t status =
        job->server->cups.finishDocument(job->server->http, job->destination, job->info);
    job->isFinished = status >= IPP_STATUS_OK && status < IPP_STATUS_ERROR_BAD_REQUEST;
    return job->isFinished ? CupsProblem::None : ReasonOf(*job);
}

void CloseJob(CupsJob* job)
{
    if (!job->server)
        return;
    if (job->id > 0 && !job->isFinished)
        CancelJob(job);
    const CupsLibrary& cups = job->server->cups;
    if (job->info)
        cups.freeDestinationInfo(job->info);
    if (job->destination)
        cups.freeDestinations(1, job->destination);
    *job = {};
}
