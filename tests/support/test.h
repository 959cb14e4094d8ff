#pragma once
// What most tests start from: the test library, the error slot, recorded traces, and a failure checked in a
// line.

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "kalvo/frame/kxerror.h"
#include "tests/support/trace_recorder.h"

namespace Zelkor::Kalvo::Testing {

using Names = std::vector<std::string>;

// Expects that `operation` leaves the failure in the slot, traced under these names in order, and returns it
// if it returns anything.
template <class Operation>
void ExpectFailure(KX_ERRORS failure, const Names& traceNames, const Operation& operation) {
    const TraceRecorder traces;
    KxOk();
    if constexpr (std::is_void_v<std::invoke_result_t<Operation>>)
        operation();
    else
        EXPECT_EQ(operation(), failure);
    EXPECT_EQ(KxGetError(), failure);
    EXPECT_EQ(traces.Functions(), traceNames);
    KxOk();
}

}  // namespace Zelkor::Kalvo::Testing
