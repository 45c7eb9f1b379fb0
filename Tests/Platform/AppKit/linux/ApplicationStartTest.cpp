#include "Tests/Support/Activation.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace {

using TestSupport::Program;
using Lines = std::vector<std::string>;

/// A command-line argument and the URL that the application receives for it.
struct Given {
    std::string argument;
    std::string arrives;
};

/// URLs that the application receives unchanged, except that invalid characters are percent-encoded.
const std::vector<Given>& exactURLs() {
    static const std::vector<Given> urls = {
        {"http://host.test/", "http://host.test/"},
        {"HTTPS://X/", "HTTPS://X/"},
        {"https://Host.TEST:8443/Path", "https://Host.TEST:8443/Path"},
        {"http://host.test", "http://host.test"},
        {"http://host.test/a/../b/./c//d/", "http://host.test/a/../b/./c//d/"},
        {"http://host.test/#frag", "http://host.test/#frag"},
        {"http://host.test/?q=1&q=&q#a?b", "http://host.test/?q=1&q=&q#a?b"},
        {"http://host.test/a%2Fb%2fc%20d", "http://host.test/a%2Fb%2fc%20d"},
        {"http://host.test/a b", "http://host.test/a%20b"},
        {"http://host.test/ü/日本?ä#é", "http://host.test/%C3%BC/%E6%97%A5%E6%9C%AC?%C3%A4#%C3%A9"},
        {"mailto:someone@host.test", "mailto:someone@host.test"},
        {"file:///etc/host%20name", "file:///etc/host%20name"},
        {"about:blank", "about:blank"},
        {"http://host.test/" + std::string(50000, 'x'), "http://host.test/" + std::string(50000, 'x')},
    };
    return urls;
}

Lines argumentsOf(const std::vector<Given>& urls) {
    Lines arguments;
    for (const auto& url : urls) {
        arguments.push_back(url.argument);
    }
    return arguments;
}

/// The lines that the application prints when it receives `urls`.
Lines arrivalOf(const std::vector<Given>& urls) {
    Lines lines = {"open " + std::to_string(urls.size())};
    for (const auto& url : urls) {
        lines.push_back(url.arrives);
    }
    return lines;
}

std::vector<Given> manyURLs() {
    std::vector<Given> urls;
    for (int i = 0; i < 300; ++i) {
        const auto url = "http://host.test/page/" + std::to_string(i);
        urls.push_back({url, url});
    }
    return urls;
}

class ApplicationStartTest : public testing::Test {
protected:
    static constexpr const char* willFinish = "will finish launching";
    static constexpr const char* didFinish = "did finish launching";

    static std::unique_ptr<Program> start(const Lines& arguments = {},
                                          const Program::Environment& environment = {}) {
        return std::make_unique<Program>(KEYLOFT_STARTED_APPLICATION, arguments, environment);
    }

    /// Starts the first instance of the application and waits until it has finished launching.
    static std::unique_ptr<Program> startFirst() {
        auto program = start();
        expectLines(*program, {willFinish, didFinish});
        return program;
    }

    static void expectLines(Program& program, const Lines& expected) {
        for (const auto& line : expected) {
            ASSERT_EQ(program.nextLine(), line) << program.errors();
        }
    }

    static void expectHandedOver(const Lines& arguments, Program& first, const Lines& lines) {
        const auto second = start(arguments);
        expectLines(first, lines);
        EXPECT_EQ(second->waitForExit(), 0) << second->errors();
        EXPECT_EQ(second->nextLine(), std::nullopt) << "it must not run as an application itself";
    }

    static void quit(Program& program) {
        const auto second = start({"quit:"});
        expectLines(program, {"open 1", "quit:"});
        EXPECT_EQ(program.waitForExit(), 0);
        EXPECT_EQ(second->waitForExit(), 0);
    }
};

TEST_F(ApplicationStartTest, startsRunsAndEnds) {
    const auto program = startFirst();
    EXPECT_TRUE(program->isRunning());
    quit(*program);
}

TEST_F(ApplicationStartTest, URLsArriveAsGivenBeforeTheStartIsOver) {
    const auto program = start(argumentsOf(exactURLs()));
    expectLines(*program, {willFinish});
    expectLines(*program, arrivalOf(exactURLs()));
    expectLines(*program, {didFinish});
}

TEST_F(ApplicationStartTest, hundredsOfURLsArriveAtTheStart) {
    const auto program = start(argumentsOf(manyURLs()));
    expectLines(*program, {willFinish});
    expectLines(*program, arrivalOf(manyURLs()));
    expectLines(*program, {didFinish});
}

TEST_F(ApplicationStartTest, aSecondStartHandsItsURLsOver) {
    const auto first = startFirst();
    expectHandedOver(argumentsOf(exactURLs()), *first, arrivalOf(exactURLs()));
    expectHandedOver(argumentsOf(manyURLs()), *first, arrivalOf(manyURLs()));
    quit(*first);
}

TEST_F(ApplicationStartTest, aSecondStartWithoutURLsReopens) {
    const auto first = startFirst();
    expectHandedOver({}, *first, {"reopen 0"});
    quit(*first);
}

TEST_F(ApplicationStartTest, whatIsNoURLIsPassedOver) {
    const Lines words = {"example.test", "/etc/hostname", "",         "--option",
                         "-x",           "a b",           "\xff\xfe", "http://host.test:port:/",
                         "//host.test/"};
    const auto first = start(words);
    expectLines(*first, {willFinish, didFinish});
    expectHandedOver(words, *first, {"reopen 0"});
    auto mixed = words;
    mixed.insert(mixed.begin() + 2, "http://host.test/");
    expectHandedOver(mixed, *first, {"open 1", "http://host.test/"});
    EXPECT_EQ(first->errors().find("CRITICAL"), std::string::npos) << first->errors();
    quit(*first);
}

TEST_F(ApplicationStartTest, ofSeveralStartedAtOnceOneRunsAndGetsEverything) {
    std::vector<std::unique_ptr<Program>> programs;
    Lines urls;
    for (int i = 0; i < 5; ++i) {
        urls.push_back("http://host.test/" + std::to_string(i));
        programs.push_back(start({urls.back()}));
    }
    Program* running = nullptr;
    Lines arrived;
    for (const auto& program : programs) {
        if (program->nextLine() == willFinish) {
            EXPECT_EQ(running, nullptr) << "two of them run";
            running = program.get();
        } else {
            EXPECT_EQ(program->waitForExit(), 0) << program->errors();
        }
    }
    ASSERT_NE(running, nullptr);
    while (arrived.size() < urls.size()) {
        const auto line = running->nextLine();
        ASSERT_TRUE(line.has_value());
        if (line->starts_with("http:")) {
            arrived.push_back(*line);
        }
    }
    std::ranges::sort(arrived);
    EXPECT_EQ(arrived, urls);
    EXPECT_TRUE(running->isRunning());
}

TEST_F(ApplicationStartTest, afterTheFirstDiedTheNextIsTheFirst) {
    auto first = startFirst();
    first->signal(SIGKILL);
    EXPECT_EQ(first->waitForExit(), std::nullopt);
    const auto next = start({"http://host.test/"});
    expectLines(*next, {willFinish, "open 1", "http://host.test/", didFinish});
    expectHandedOver({}, *next, {"reopen 0"});
}

TEST_F(ApplicationStartTest, aFirstThatHangsForAWhileLosesNothing) {
    const auto first = startFirst();
    first->signal(SIGSTOP);
    const auto second = start({"http://host.test/"});
    first->signal(SIGCONT);
    expectLines(*first, {"open 1", "http://host.test/"});
    EXPECT_EQ(second->waitForExit(), 0) << second->errors();
}

TEST_F(ApplicationStartTest, whenTheFirstDiesWhileItIsAskedTheSecondTakesItsPlace) {
    const auto first = startFirst();
    first->signal(SIGSTOP);
    const auto second = start({"http://host.test/"});
    ASSERT_TRUE(TestSupport::eventually([&] { return second->hasThread("gdbus"); }));
    first->signal(SIGKILL);
    expectLines(*second, {willFinish, "open 1", "http://host.test/", didFinish});
    expectHandedOver({}, *second, {"reopen 0"});
}

TEST_F(ApplicationStartTest, aServiceStartsWithWhatTheBusAsksFor) {
    const auto service = start({"--gapplication-service"});
    expectLines(*service, {willFinish});
    // Pass only HTTP URLs, because GVfs may rewrite URLs with other schemes. Do not pass URLs with invalid
    // UTF-8, because GLib's parser for D-Bus call arguments rejects them.
    auto urls = exactURLs();
    std::erase_if(urls, [](const auto& url) { return !url.argument.starts_with("http"); });
    ASSERT_TRUE(TestSupport::activate(argumentsOf(urls)));
    expectLines(*service, arrivalOf(urls));
    expectLines(*service, {didFinish});
    ASSERT_TRUE(TestSupport::activate());
    expectLines(*service, {"reopen 0"});
    expectHandedOver({"http://host.test/"}, *service, {"open 1", "http://host.test/"});
    quit(*service);
}

TEST_F(ApplicationStartTest, aServiceThatIsActivatedFinishesItsStart) {
    const auto service = start({"--gapplication-service"});
    expectLines(*service, {willFinish});
    ASSERT_TRUE(TestSupport::activate());
    expectLines(*service, {didFinish});
    quit(*service);
}

TEST_F(ApplicationStartTest, theBusHandsURLsToAProgramThatRuns) {
    const auto program = startFirst();
    ASSERT_TRUE(TestSupport::activate({"http://host.test/1", "http://host.test/2"}));
    expectLines(*program, {"open 2", "http://host.test/1", "http://host.test/2"});
    quit(*program);
}

TEST_F(ApplicationStartTest, withoutASessionBusEachStartRunsByItself) {
    const std::optional<std::string> addresses[] = {"unix:path=/nonexistent/bus", "nonsense", std::nullopt};
    for (const auto& address : addresses) {
        const Program::Environment environment = {{"DBUS_SESSION_BUS_ADDRESS", address}};
        const auto one = start({"http://host.test/one"}, environment);
        const auto two = start({}, environment);
        expectLines(*one, {willFinish, "open 1", "http://host.test/one", didFinish});
        expectLines(*two, {willFinish, didFinish});
    }
}

} // namespace
