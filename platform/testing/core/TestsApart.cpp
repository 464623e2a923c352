#include "platform/testing/core/TestsApart.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fnmatch.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr const char* variable = "TAVRIX_TESTS_APART";

bool MatchesOne(const std::string& patterns, const std::string& name)
{
    std::istringstream all(patterns);
    for (std::string pattern; std::getline(all, pattern, ':');)
        if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0)
            return true;
    return false;
}

// Patterns between colons, those behind a minus are left out.
bool IsChosen(const std::string& filter, const std::string& name)
{
    const size_t minus = filter.find('-');
    const std::string wanted = filter.substr(0, minus);
    return MatchesOne(wanted.empty() ? "*" : wanted, name) &&
           (minus == std::string::npos || !MatchesOne(filter.substr(minus + 1), name));
}

std::vector<std::string> ChosenTests()
{
    std::vector<std::string> names;
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            std::string name = suite.name() + std::string(".") + suite.GetTestInfo(j)->name();
            if (IsChosen(GTEST_FLAG_GET(filter), name))
                names.push_back(std::move(name));
        }
    }
    return names;
}

bool Passes(const std::string& name, unsigned seconds, int (*run)())
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0)
        std::abort();
    if (child == 0) {
        unsetenv(variable);
        alarm(seconds);
        GTEST_FLAG_SET(filter, name);
        std::exit(run());
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child)
        std::abort();
    if (WIFSIGNALED(status))
        std::printf("%s ended by signal %d (%s)\n", name.c_str(), WTERMSIG(status),
                    strsignal(WTERMSIG(status)));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

namespace tavrix::testing
{

bool AreTestsApart()
{
    // A list of the tests is asked for from outside, which runs none.
    return std::getenv(variable) != nullptr && !GTEST_FLAG_GET(list_tests);
}

int RunTestsApart(int (*run)())
{
    const auto seconds = static_cast<unsigned>(std::strtoul(std::getenv(variable), nullptr, 10));
    const std::vector<std::string> names = ChosenTests();
    std::string failed;
    for (const std::string& name : names)
        if (!Passes(name, seconds, run))
            failed += "\n    " + name;
    std::printf("%zu tests apart%s%s\n", names.size(),
                failed.empty() ? "" : ", failed:", failed.c_str());
    return names.empty() || !failed.empty();
}

} // namespace tavrix::testing
