#include "Platform/WebKit/macos/Reply.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace Platform {

TEST(Reply, PassesOnTheFirstAnswerAlone) {
    std::vector<bool> answers;
    {
        Reply<bool> reply([&answers](bool answer) { answers.push_back(answer); }, false);
        reply(true);
        reply(false);
    }
    EXPECT_EQ(answers, std::vector{true});
}

TEST(Reply, GivesTheSafeAnswerWhenNobodyGaveOne) {
    std::vector<int> answers;
    {
        const Reply<int> reply([&answers](int answer) { answers.push_back(answer); }, 7);
    }
    EXPECT_EQ(answers, std::vector{7});
}

TEST(Reply, WithoutAValueIsGivenOnce) {
    int answers = 0;
    {
        Reply<> reply([&answers] { ++answers; });
        reply();
    }
    EXPECT_EQ(answers, 1);
}

TEST(Reply, IsGivenWhenTheLastOneHoldingItLetsGo) {
    int answers = 0;
    auto reply = std::make_shared<Reply<>>([&answers] { ++answers; });
    std::function<void()> completion = [reply] { (*reply)(); };
    reply.reset();
    EXPECT_EQ(answers, 0);
    completion = nullptr;
    EXPECT_EQ(answers, 1);
}

TEST(Reply, LetsGoOfItselfFromInsideTheHandler) {
    int answers = 0;
    std::shared_ptr<Reply<>> reply;
    reply = std::make_shared<Reply<>>([&answers, &reply] {
        ++answers;
        reply.reset();
    });
    (*reply)();
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(reply, nullptr);
}

} // namespace Platform
