// A machine on which a library is not installed, or is of another version.
#pragma once

#include <string>

namespace missingtest
{

enum class Lack {
    Library,  // it is not there
    Functions // it is there, and has none of the functions
};

/// While it lives, whoever in this process opens a library by exactly this name gets none, or one
/// without its functions. One at a time; a library that is open already stays so.
class WithoutLibrary
{
public:
    explicit WithoutLibrary(std::string name, Lack lack = Lack::Library);
    ~WithoutLibrary();
    WithoutLibrary(const WithoutLibrary&) = delete;
    WithoutLibrary& operator=(const WithoutLibrary&) = delete;

    /// How often somebody wanted it.
    int Asked() const;
};

} // namespace missingtest
