// A library that would export all it has.
#include <string>

std::string ChattyName()
{
    return "Heavy";
}
