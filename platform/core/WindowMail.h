// What processes tell each other's windows, as bytes: a request in one packet, for some an answer
// in another. Both ends run on one machine, so numbers have its byte order; their widths are the
// same for programs of 32 and of 64 bits. Pure functions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tavrix::platform
{

enum class MailKind : uint32_t {
    CopyData = 1, // WM_COPYDATA; answered
    Raise = 2,    // BringWindowToTop; no answer
    Activate = 3  // SetForegroundWindow; no answer
};

struct WindowMail {
    MailKind kind = MailKind::CopyData;
    uint64_t window = 0;  // the receiver's own handle
    uint64_t word = 0;    // dwData
    bool hasData = false; // false: lpData is null
    /// The bytes behind lpData. For Activate the desktop's token that allows it, as UTF-8.
    std::vector<unsigned char> data;
};

/// The most bytes that a request may carry: a command line of 32,767 characters and its zero.
constexpr size_t MailDataLimit = 65536;
constexpr size_t MailHeaderSize = 32;

/// Precondition: no more data than the limit.
std::vector<unsigned char> PackMail(const WindowMail& mail);
/// Empty for anything but one whole request.
std::optional<WindowMail> UnpackMail(const unsigned char* bytes, size_t size);

struct MailAnswer {
    bool delivered = false; // false: there is no such window any more
    int64_t result = 0;
};

constexpr size_t MailAnswerSize = 16;

std::vector<unsigned char> PackAnswer(const MailAnswer& answer);
std::optional<MailAnswer> UnpackAnswer(const unsigned char* bytes, size_t size);

} // namespace tavrix::platform
