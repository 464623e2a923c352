// One print job: its document goes to the printing system piece by piece, as it is made. A job that
// is not finished is cancelled, so that nothing of it is ever printed.
#pragma once

#include "standard-plugins/cups-print/CupsServer.h"

struct CupsJob {
    CupsServer* server;
    cups_dest_t* destination;
    cups_dinfo_t* info;
    int id;
    bool isFinished;
    /// The printing system's reason for refusing a piece.
    CupsProblem problem;
};

struct JobOptions {
    /// UTF-8.
    const char* printer;
    const char* title;
    /// The name of the paper, as the printing system's options have it.
    const char* media;
    uint32_t copies;
};

/// Makes the job and begins its one document, a PDF. None, Unknown, Refused, Lost. To be closed
/// after either.
CupsProblem StartJob(CupsJob* job, CupsServer* server, const JobOptions& options);
/// Sends a piece of the document. False after a failure, with the job's problem set.
bool WriteToJob(CupsJob* job, const void* bytes, uint32_t count);
/// Ends the document; the job is then the printing system's. None, Refused, Lost.
CupsProblem FinishJob(CupsJob* job);
/// Cancels the job if it was not finished; also right for a record that is all zero.
void CloseJob(CupsJob* job);
