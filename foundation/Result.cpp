#include "foundation/Result.h"

const char* ResultText(i32 result)
{
    switch (result) {
    case Added:
        return "added";
    case Replaced:
        return "replaced";
    case Done:
        return "done";
    case NothingDone:
        return "nothing done";
    case Failed:
        return "failed";
    case NoMemory:
        return "no memory";
    case WrongState:
        return "not set up";
    case BadArgument:
        return "bad argument";
    case NoSuchName:
        return "no such name";
    case RecordTooSmall:
        return "record too small";
    case UnknownType:
        return "unknown type";
    case NotConvertible:
        return "not convertible";
    case NoStorage:
        return "no storage for a line";
    default:
        // Some operations pass a count on as their success.
        return result > 0 ? "success" : "unknown failure";
    }
}
