#include "kit/check/Check.h"

#include "kit/check/ChildProcess.h"

namespace plugincheck
{

void CheckContext::Violation(const std::string& text, const std::string& subject)
{
    box.Tell({key, subject, text, false});
}

void CheckContext::Note(const std::string& text, const std::string& subject)
{
    box.Tell({key, subject, text, true});
}

void CheckContext::ViolationOf(const char* otherKey, const std::string& subject,
                               const std::string& text)
{
    box.Tell({otherKey, subject, text, false});
}

void CheckContext::Doing(const std::string& subject, const std::string& circumstances)
{
    box.Doing(subject, circumstances);
}

void CheckContext::End()
{
    box.Finish();
    EndChild();
}

} // namespace plugincheck
