#include "Platform/Foundation/Error.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Platform::Error;

TEST(Error, isAValueThatIsCopiedAndCompared) {
    const Error error = {.domain = std::string(Error::urlDomain),
                         .code = Error::urlTimedOut,
                         .localizedDescription = "The request timed out.",
                         .failingURL = "https://example.test/"};
    Error copy = error;
    EXPECT_EQ(copy, error);
    copy.failingURL.reset();
    EXPECT_NE(copy, error);
    EXPECT_EQ(error.domain, "NSURLErrorDomain");
    EXPECT_EQ(error.code, -1001);
}

} // namespace
