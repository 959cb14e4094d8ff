#pragma once
// What every test starts from: the standard library, the public headers, and what tests share: recorded
// traces, failures checked in a line, temporary folders, pixels as bytes, streams, shortages of memory.

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <numbers>
#include <numeric>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "kalvo/kalvo.h"
#include "tests/support/pixel_bytes.h"
#include "tests/support/pixel_types.h"
#include "tests/support/short_memory.h"
#include "tests/support/streams.h"
#include "tests/support/temporary_folder.h"
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

// The extents of an object and all below it: "10 20 30 40 (0 0 5 5, 1 1 2 2 (0 0 1 1))".
inline std::string TreeOf(const KxGenericROI& object) {
    std::ostringstream text;
    text << object.GetOrgX() << ' ' << object.GetOrgY() << ' ' << object.GetWidth() << ' '
         << object.GetHeight();
    for (const KxGenericROI* child = object.GetFirstSubROI(); child; child = child->GetNextSiblingROI())
        text << (child == object.GetFirstSubROI() ? " (" : ", ") << TreeOf(*child);
    text << (object.GetFirstSubROI() ? ")" : "");
    return text.str();
}

// Runs an operation on a thread with as small a stack as threads get.
inline void RunOnSmallStack(std::function<void()> operation) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::max<std::size_t>(PTHREAD_STACK_MIN, 64 * 1024));
    const auto run = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &operation), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace Zelkor::Kalvo::Testing
