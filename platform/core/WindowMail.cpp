#include "platform/core/WindowMail.h"

#include <cstring>

namespace tavrix::platform
{

namespace
{

constexpr uint32_t MailMark = 0x31575654;   // TVW1
constexpr uint32_t AnswerMark = 0x31415654; // TVA1

struct Header {
    uint32_t mark;
    uint32_t kind;
    uint64_t window;
    uint64_t word;
    uint32_t size;
    uint32_t hasData;
};
static_assert(sizeof(Header) == MailHeaderSize);

struct Answer {
    uint32_t mark;
    uint32_t delivered;
    int64_t result;
};
static_assert(sizeof(Answer) == MailAnswerSize);

} // namespace

std::vector<unsigned char> PackMail(const WindowMail& mail)
{
    const Header header = {
        MailMark,  static_cast<uint32_t>(mail.kind),        mail.window,
        mail.word, static_cast<uint32_t>(mail.data.size()), mail.hasData ? 1U : 0U};
    std::vector<unsigned char> bytes(sizeof header + mail.data.size());
    std::memcpy(bytes.data(), &header, sizeof header);
    if (!mail.data.empty())
        std::memcpy(bytes.data() + sizeof header, mail.data.data(), mail.data.size());
    return bytes;
}

std::optional<WindowMail> UnpackMail(const unsigned char* bytes, size_t size)
{
    Header header;
    if (size < sizeof header)
        return std::nullopt;
    std::memcpy(&header, bytes, sizeof header);
    const size_t dataSize = size - sizeof header;
    if (header.mark != MailMark || header.kind < static_cast<uint32_t>(MailKind::CopyData) ||
        header.kind > static_cast<uint32_t>(MailKind::Activate) || header.size != dataSize ||
        dataSize > MailDataLimit || header.hasData > 1 || (header.hasData == 0 && dataSize != 0))
        return std::nullopt;
    WindowMail mail;
    mail.kind = static_cast<MailKind>(header.kind);
    mail.window = header.window;
    mail.word = header.word;
    mail.hasData = header.hasData != 0;
    // A block of exactly this size: a receiver that reads on is caught by the tools.
    mail.data = std::vector<unsigned char>(bytes + sizeof header, bytes + size);
    return mail;
}

std::vector<unsigned char> PackAnswer(const MailAnswer& answer)
{
    const Answer packed = {AnswerMark, answer.delivered ? 1U : 0U, answer.result};
    std::vector<unsigned char> bytes(sizeof packed);
    std::memcpy(bytes.data(), &packed, sizeof packed);
    return bytes;
}

std::optional<MailAnswer> UnpackAnswer(const unsigned char* bytes, size_t size)
{
    Answer packed;
    if (size != sizeof packed)
        return std::nullopt;
    std::memcpy(&packed, bytes, sizeof packed);
    if (packed.mark != AnswerMark || packed.delivered > 1)
        return std::nullopt;
    return MailAnswer{packed.delivered != 0, packed.result};
}

} // namespace tavrix::platform
