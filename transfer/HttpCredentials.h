// Name and password as the text behind "Basic" (RFC 2617 section 2).
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// Characters of a name, of a password and of both encoded, with the final zero.
enum : u32 { HttpCredentialSize = 256 };

/// Meant: the encoder's CR LF behind every 76 characters stays inside the text, though no header
/// may hold one, and what is beyond 255 characters is lost. Done or NoMemory.
[[nodiscard]] i32 EncodeCredentials(const WCHAR* user, const WCHAR* password,
                                    WCHAR (&encoded)[HttpCredentialSize]);
