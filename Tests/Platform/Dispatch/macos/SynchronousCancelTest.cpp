#include "Platform/Dispatch/ReadSource.h"
#include "Platform/Dispatch/SerialQueue.h"
#include "Tests/Platform/Dispatch/Pipe.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

using Platform::ReadSource;
using Platform::SerialQueue;
using TestSupport::Pipe;

/// Dispatch goes on watching a descriptor until then, whatever `cancel` has returned.
TEST(ReadSourceOfDispatch, aSynchronousCallReturnsBehindTheCancelHandlersThatItCauses) {
    SerialQueue queue("test");
    for (int turn = 0; turn < 200; ++turn) {
        Pipe pipe;
        std::atomic<bool> cancelled = false;
        ReadSource source(queue, pipe.readEnd());
        source.setCancelHandler([&] { cancelled = true; });
        if (turn % 2 == 0) {
            source.resume();
        }
        queue.sync([&] { source.cancel(); });
        EXPECT_TRUE(cancelled);
        pipe.closeReadEnd();
    }
}

} // namespace
