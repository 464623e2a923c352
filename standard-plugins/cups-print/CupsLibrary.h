// The functions of the library cups that are used here; opened while the dialog asks for the
// printers and while one prints.
//
// It stays in the process: for each thread that used it, it has a record that the thread gives back
// at its end, by a function of the library.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <cups/cups.h>

struct CupsLibrary {
    HostLibrary host;
    decltype(&cupsServer) server;
    decltype(&ippPort) port;
    decltype(&cupsEncryption) encryption;
    decltype(&cupsSetServer) setServer;
    decltype(&cupsSetPasswordCB2) setPasswordCallback;
    decltype(&httpConnect2) connect;
    decltype(&httpClose) close;
    decltype(&httpSetTimeout) setTimeout;
    decltype(&httpError) error;
    decltype(&ippNewRequest) newRequest;
    decltype(&ippAddString) addString;
    decltype(&cupsDoRequest) doRequest;
    decltype(&ippGetStatusCode) statusOf;
    decltype(&ippFirstAttribute) firstAttribute;
    decltype(&ippNextAttribute) nextAttribute;
    decltype(&ippGetName) attributeName;
    decltype(&ippGetString) attributeString;
    decltype(&ippDelete) deleteMessage;
    decltype(&cupsGetDefault2) defaultPrinter;
    decltype(&cupsGetNamedDest) namedDestination;
    decltype(&cupsFreeDests) freeDestinations;
    decltype(&cupsCopyDestInfo) destinationInfo;
    decltype(&cupsFreeDestInfo) freeDestinationInfo;
    decltype(&cupsCreateDestJob) createJob;
    decltype(&cupsStartDestDocument) startDocument;
    decltype(&cupsWriteRequestData) writeData;
    decltype(&cupsFinishDestDocument) finishDocument;
    decltype(&cupsCancelDestJob) cancelJob;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenCups(CupsLibrary* library);
/// Also right for a record that is all zero.
void CloseCups(CupsLibrary* library);
