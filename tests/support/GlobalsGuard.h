// A guard on the library's process-wide state: every test must leave it as it found it.
//
// The library keeps its settings, hooks and the state of a running operation in globals (the scale
// setting in force, the file header, the class number map hooks, the factories, the paste list, the
// installed services, ...). A test that changes one and does not put it back changes the behaviour of
// the tests that run after it in the same program, in an order that depends on the filter. The guard
// is a test event listener: it takes a snapshot of every global when a test starts and, when the test
// ends, adds a failure to that test naming each global that differs, with its value before and after.
//
// A snapshot holds each global as a short text (`State`), so that two snapshots compare field by
// field and a difference prints as it is: pointers by address, records by value, `std::function`
// hooks by whether one is assigned and the type of its target (and the address of a plain function).
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vl::test {

// One global as text: its name and its state.
struct TGlobalState {
    std::string Name;
    std::string State;
};
using TGlobalsSnapshot = std::vector<TGlobalState>;

// The state of every guarded global now.
TGlobalsSnapshot SnapshotGlobals();

// One line per global whose state differs between the two snapshots ("Name: was X, now Y"), in the
// order of `Before`. A global missing from either side is reported as well.
std::vector<std::string> ChangedGlobals(const TGlobalsSnapshot& Before, const TGlobalsSnapshot& After);

// The listener. Appended to the listeners after `InitGoogleTest`, its `OnTestEnd` runs before the
// default printer's, so that the failure it adds makes the printer report the test FAILED.
class TGlobalsGuard : public ::testing::EmptyTestEventListener {
public:
    void OnTestStart(const ::testing::TestInfo& Test) override;
    void OnTestEnd(const ::testing::TestInfo& Test) override;

private:
    TGlobalsSnapshot FBefore;
};

} // namespace vl::test
