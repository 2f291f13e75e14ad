#pragma once

#include <juce_core/juce_core.h>

#include <memory>

// What another instance does, in a process of its own: a test starts one test of this
// same binary with a role in ZOLK_CHILD; that test plays the role when it is set and
// is skipped otherwise.
namespace ChildTest
{
// The role this process was started for, empty in an ordinary run.
juce::String role();

// Starts the test of that full name ("Suite.Test") in a new process.
std::unique_ptr<juce::ChildProcess> start (const juce::String& test, const juce::String& role);

// Waits for the child; empty when its test passed, else what it printed.
juce::String failureOf (juce::ChildProcess& child);
} // namespace ChildTest
