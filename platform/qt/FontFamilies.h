// The names of the machine's fonts, as the program sees them. User-interface thread, after the
// toolkit is up.
#pragma once

#include <windows.h>

#include <QString>

#include <vector>

namespace tavrix::platform
{

struct FontFamily {
    QString name;  // by which CreateFontIndirectW finds it, of any length
    bool scalable; // to any height
    bool japanese; // has the signs of Japanese
};

/// Every family once, in the order of the names. The names that the toolkit gives to its choice of
/// a face ("Sans Serif") are none, and the makers that it adds to a name that several fonts have
/// are left away: which of them the name gives is the toolkit's choice.
std::vector<FontFamily> FontFamilies();

/// The family that a font record's face means: that of this name or, as a record holds 31
/// characters alone, the first one that begins with such a name. Empty when there is none.
QString FamilyOfFace(const QString& face);

/// EnumFontFamiliesW of a context that exists.
int EnumerateFamilies(const WCHAR* family, FONTENUMPROCW take, LPARAM parameter);

} // namespace tavrix::platform
