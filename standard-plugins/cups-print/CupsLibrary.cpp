#include "standard-plugins/cups-print/CupsLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

namespace
{

bool BindConnection(CupsLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "cupsServer", &library->server) &&
           BindHostFunction(host, "ippPort", &library->port) &&
           BindHostFunction(host, "cupsEncryption", &library->encryption) &&
           BindHostFunction(host, "cupsSetServer", &library->setServer) &&
           BindHostFunction(host, "cupsSetPasswordCB2", &library->setPasswordCallback) &&
           BindHostFunction(host, "httpConnect2", &library->connect) &&
           BindHostFunction(host, "httpClose", &library->close) &&
           BindHostFunction(host, "httpSetTimeout", &library->setTimeout) &&
           BindHostFunction(host, "httpError", &library->error);
}

bool BindMessages(CupsLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "ippNewRequest", &library->newRequest) &&
           BindHostFunction(host, "ippAddString", &library->addString) &&
           BindHostFunction(host, "cupsDoRequest", &library->doRequest) &&
           BindHostFunction(host, "ippGetStatusCode", &library->statusOf) &&
           BindHostFunction(host, "ippFirstAttribute", &library->firstAttribute) &&
           BindHostFunction(host, "ippNextAttribute", &library->nextAttribute) &&
           BindHostFunction(host, "ippGetName", &library->attributeName) &&
           BindHostFunction(host, "ippGetString", &library->attributeString) &&
           BindHostFunction(host, "ippDelete", &library->deleteMessage);
}

bool BindJobs(CupsLibrary* library)
{
    const HostLibrary& host = library->host;
    return BindHostFunction(host, "cupsGetDefault2", &library->defaultPrinter) &&
           BindHostFunction(host, "cupsGetNamedDest", &library->namedDestination) &&
           BindHostFunction(host, "cupsFreeDests", &library->freeDestinations) &&
           BindHostFunction(host, "cupsCopyDestInfo", &library->destinationInfo) &&
           BindHostFunction(host, "cupsFreeDestInfo", &library->freeDestinationInfo) &&
           BindHostFunction(host, "cupsCreateDestJob", &library->createJob) &&
           BindHostFunction(host, "cupsStartDestDocument", &library->startDocument) &&
           BindHostFunction(host, "cupsWriteRequestData", &library->writeData) &&
           BindHostFunction(host, "cupsFinishDestDocument", &library->finishDocument) &&
           BindHostFunction(host, "cupsCancelDestJob", &library->cancelJob);
}

} // namespace

bool OpenCups(CupsLibrary* library)
{
    *library = {};
    if (!OpenLastingHostLibrary(&library->host, "libcups.so.2", PLUGIN_TEXT("cups.dll")))
        return false;
    if (BindConnection(library) && BindMessages(library) && BindJobs(library))
        return true;
    CloseCups(library);
    return false;
}

void CloseCups(CupsLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
