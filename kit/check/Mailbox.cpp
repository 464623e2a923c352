#include "kit/check/Mailbox.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <mutex>

namespace plugincheck
{

struct SharedPage {
    enum : u32 { Finished = 0x46494E21, FindingRoom = 1 << 16, TextRoom = 512 };
    u32 finished;
    u32 used;
    i32 identityResult;
    char subject[TextRoom];
    char circumstances[TextRoom];
    char identity[TextRoom];
    char name[TextRoom];
    char outcome[TextRoom];
    char findings[FindingRoom];
};

namespace
{

constexpr char FieldEnd = '\x1f';
constexpr char RecordEnd = '\x1e';

SharedPage* Map(int descriptor)
{
    void* place =
        mmap(nullptr, sizeof(SharedPage), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    return place == MAP_FAILED ? nullptr : static_cast<SharedPage*>(place);
}

void Put(char (&room)[SharedPage::TextRoom], const std::string& text)
{
    const size_t length = std::min<size_t>(text.size(), SharedPage::TextRoom - 1);
    std::memcpy(room, text.data(), length);
    room[length] = 0;
}

std::string Get(const char (&room)[SharedPage::TextRoom])
{
    return std::string(room, strnlen(room, SharedPage::TextRoom));
}

/// Texts of plugins may hold anything; a record must stay one line.
std::string Plain(std::string text)
{
    for (char& character : text)
        if (static_cast<unsigned char>(character) < 0x20)
            character = ' ';
    return text;
}

} // namespace

Mailbox::Mailbox() : Mailbox(memfd_create("tavrix-plugin-check", 0)) {}

Mailbox::Mailbox(int given) : descriptor(given), page(nullptr)
{
    if (descriptor >= 0 && ftruncate(descriptor, sizeof(SharedPage)) == 0)
        page = Map(descriptor);
}

Mailbox::~Mailbox()
{
    if (page != nullptr)
        munmap(page, sizeof(SharedPage));
    if (descriptor >= 0)
        close(descriptor);
}

void Mailbox::Tell(const Finding& finding)
{
    static std::mutex lock;
    const std::lock_guard<std::mutex> held(lock);
    const std::string record = Plain(finding.key) + FieldEnd + Plain(finding.subject) + FieldEnd +
                               Plain(finding.text) + FieldEnd + (finding.note ? '1' : '0') +
                               RecordEnd;
    if (page->used > SharedPage::FindingRoom ||
        record.size() > SharedPage::FindingRoom - page->used)
        return;
    std::memcpy(page->findings + page->used, record.data(), record.size());
    page->used += static_cast<u32>(record.size());
}

void Mailbox::TellFacts(const Facts& facts)
{
    Put(page->identity, facts.identity);
    Put(page->name, facts.name);
    page->identityResult = facts.identityResult;
}

void Mailbox::TellOutcome(const std::string& outcome)
{
    Put(page->outcome, outcome);
}

void Mailbox::Doing(const std::string& subject, const std::string& circumstances)
{
    Put(page->subject, subject);
    Put(page->circumstances, circumstances);
}

void Mailbox::Finish()
{
    page->finished = SharedPage::Finished;
}

std::vector<Finding> Mailbox::Findings() const
{
    std::vector<Finding> all;
    const std::string text(page->findings, std::min<size_t>(page->used, SharedPage::FindingRoom));
    size_t start = 0;
    for (size_t end = text.find(RecordEnd); end != std::string::npos;
         start = end + 1, end = text.find(RecordEnd, start)) {
        std::vector<std::string> fields;
        size_t from = start;
        for (size_t to = text.find(FieldEnd, from); to < end; to = text.find(FieldEnd, from)) {
            fields.push_back(text.substr(from, to - from));
            from = to + 1;
        }
        if (fields.size() == 3)
            all.push_back({fields[0], fields[1], fields[2], text.substr(from, end - from) == "1"});
    }
    return all;
}

Facts Mailbox::ReadFacts() const
{
    return {Get(page->identity), page->identityResult, Get(page->name)};
}

std::string Mailbox::Outcome() const
{
    return Get(page->outcome);
}

std::string Mailbox::Subject() const
{
    return Get(page->subject);
}

std::string Mailbox::Circumstances() const
{
    return Get(page->circumstances);
}

bool Mailbox::IsFinished() const
{
    return page->finished == SharedPage::Finished;
}

} // namespace plugincheck
