#include "support/ChildTest.h"

#include <cstdlib>

namespace ChildTest
{
namespace
{
constexpr const char* variable = "ZOLK_CHILD";
} // namespace

juce::String role()
{
    const char* value = std::getenv (variable);
    return value != nullptr ? juce::String::fromUTF8 (value) : juce::String();
}

std::unique_ptr<juce::ChildProcess> start (const juce::String& test, const juce::String& childRole)
{
    auto child = std::make_unique<juce::ChildProcess>();
    const auto self = juce::File::getSpecialLocation (juce::File::currentExecutableFile).getFullPathName();
    ::setenv (variable, childRole.toRawUTF8(), 1);
    const bool started = child->start (juce::StringArray{self, "--gtest_filter=" + test});
    ::unsetenv (variable);
    return started ? std::move (child) : nullptr;
}

juce::String failureOf (juce::ChildProcess& child)
{
    const auto output = child.readAllProcessOutput();
    const bool passed = child.waitForProcessToFinish (60000) && child.getExitCode() == 0 &&
                        output.contains ("[  PASSED  ] 1 test");
    return passed ? juce::String() : output;
}
} // namespace ChildTest
