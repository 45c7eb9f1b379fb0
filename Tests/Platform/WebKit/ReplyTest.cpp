#include "Platform/WebKit/Reply.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace Platform {

TEST(Reply, passesOnTheFirstAnswerAlone) {
    std::vector<bool> answers;
    {
        Reply<bool> reply([&answers](bool answer) { answers.push_back(answer); }, false);
        reply(true);
        reply(false);
    }
    EXPECT_EQ(answers, std::vector{true});
}

TEST(Reply, givesTheSafeAnswerWhenNobodyGaveOne) {
    std::vector<int> answers;
    {
        const Reply<int> reply([&answers](int answer) { answers.push_back(answer); }, 7);
    }
    EXPECT_EQ(answers, std::vector{7});
}

TEST(Reply, withoutAValueIsGivenOnce) {
    int answers = 0;
    {
        Reply<> reply([&answers] { ++answers; });
        reply();
    }
    EXPECT_EQ(answers, 1);
}

TEST(Reply, isGivenWhenTheLastOneHoldingItLetsGo) {
    int answers = 0;
    auto reply = std::make_shared<Reply<>>([&answers] { ++answers; });
    std::function<void()> completion = [reply] { (*reply)(); };
    reply.reset();
    EXPECT_EQ(answers, 0);
    completion = nullptr;
    EXPECT_EQ(answers, 1);
}

TEST(Reply, letsGoOfItselfFromInsideTheHandler) {
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

TEST(PendingReplies, answersWhatIsOpenSafelyAndOnce) {
    std::vector<bool> confirmations;
    int dismissals = 0;
    const auto confirm = std::make_shared<Reply<bool>>(
        [&confirmations](bool confirmed) { confirmations.push_back(confirmed); }, false);
    const auto alert = std::make_shared<Reply<>>([&dismissals] { ++dismissals; });
    PendingReplies replies;
    replies.add(confirm);
    replies.add(alert);
    replies.answerAllSafely();
    EXPECT_EQ(confirmations, std::vector{false});
    EXPECT_EQ(dismissals, 1);
    // A panel stays visible after `answerAllSafely`. If the user then clicks a button, the second reply is
    // ignored.
    (*confirm)(true);
    replies.answerAllSafely();
    EXPECT_EQ(confirmations, std::vector{false});
    EXPECT_EQ(dismissals, 1);
}

TEST(PendingReplies, leavesWhatWasAnsweredAlone) {
    std::vector<bool> answers;
    const auto reply =
        std::make_shared<Reply<bool>>([&answers](bool answer) { answers.push_back(answer); }, false);
    PendingReplies replies;
    replies.add(reply);
    (*reply)(true);
    replies.answerAllSafely();
    EXPECT_EQ(answers, std::vector{true});
}

TEST(PendingReplies, doesNotKeepAQuestionOpen) {
    int answers = 0;
    auto reply = std::make_shared<Reply<>>([&answers] { ++answers; });
    PendingReplies replies;
    replies.add(reply);
    reply.reset();
    EXPECT_EQ(answers, 1);
    replies.answerAllSafely();
    EXPECT_EQ(answers, 1);
}

TEST(PendingReplies, areOpenUntilTheyAreAnswered) {
    PendingReplies replies;
    EXPECT_FALSE(replies.areOpen());
    const auto answered = std::make_shared<Reply<>>([] {});
    replies.add(answered);
    EXPECT_TRUE(replies.areOpen());
    (*answered)();
    EXPECT_FALSE(replies.areOpen());
    auto dropped = std::make_shared<Reply<>>([] {});
    replies.add(dropped);
    EXPECT_TRUE(replies.areOpen());
    dropped.reset();
    EXPECT_FALSE(replies.areOpen());
}

TEST(PendingReplies, takesAnotherQuestionFromInsideAnAnswer) {
    PendingReplies replies;
    std::shared_ptr<Reply<>> second;
    int answers = 0;
    const auto first = std::make_shared<Reply<>>([&] {
        second = std::make_shared<Reply<>>([&answers] { ++answers; });
        replies.add(second);
    });
    replies.add(first);
    replies.answerAllSafely();
    EXPECT_EQ(answers, 0);
    replies.answerAllSafely();
    EXPECT_EQ(answers, 1);
}

} // namespace Platform
