#include "Tests/Support/Program.h"

#include "Tests/Support/AccessibilityTree.h"
#include "Tests/Support/Activation.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/linux/Xdotool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using TestSupport::askXdotool;
using TestSupport::eventually;
using TestSupport::HTTPResponse;
using TestSupport::Program;
using TestSupport::waitForFocus;
using Lines = std::vector<std::string>;

/// Tests the real program by observing its windows and its requests to a web server.
class ProgramTest : public testing::Test {
public:
    ProgramTest(const ProgramTest&) = delete;
    ProgramTest& operator=(const ProgramTest&) = delete;
    ~ProgramTest() override = default;

protected:
    ProgramTest() {
        TestSupport::startWindowManager();
        server.route("/seen", HTTPResponse::html(""));
    }

    /// Adds a page with the title `title` and returns its URL. The page reports its own URL to the server
    /// when it is loaded.
    std::string page(const std::string& path, const std::string& title) {
        server.route(path,
                     HTTPResponse::html("<title>" + title +
                                        "</title><script>new Image().src = '/seen?' + "
                                        "encodeURIComponent(location.href.slice(location.origin.length))"
                                        "</script>"));
        return server.url(path);
    }
    std::string page(const std::string& path) { return page(path, path); }

    /// The URLs that the pages have reported, percent-encoded and without the origin. Sorted, because pages
    /// load concurrently.
    Lines seen() const {
        Lines urls;
        for (const auto& request : server.requests("/seen")) {
            urls.push_back(request.query);
        }
        std::ranges::sort(urls);
        return urls;
    }

    static std::unique_ptr<Program> start(const Lines& arguments = {},
                                          const Program::Environment& environment = {}) {
        return std::make_unique<Program>(KEYLOFT_PROGRAM, arguments, environment);
    }
    /// Starts the program a second time and expects the new process to exit with status 0.
    static void startAgain(const Lines& arguments = {}) {
        const auto second = start(arguments);
        EXPECT_EQ(second->waitForExit(), 0) << second->errors();
    }

    /// The titles of the visible windows.
    static Lines windows() { return askXdotool("search --onlyvisible --class keyloft getwindowname %@"); }
    [[nodiscard]] static bool waitForWindows(const Lines& titles) {
        const bool came = eventually([&] { return windows() == titles; });
        if (!came) {
            ADD_FAILURE() << "windows: " << testing::PrintToString(windows());
        }
        return came;
    }
    static void press(const std::string& key) { askXdotool("key " + key); }
    static void type(const std::string& text) { askXdotool("type --delay 2 '" + text + "'"); }

    /// Waits until the program's text field with the accessible name `name` has the focus.
    [[nodiscard]] static bool waitForField(const Program& program, const std::string& name) {
        return eventually([&] {
            const auto objects = TestSupport::accessibleObjects(program.id());
            return std::ranges::any_of(
                objects, [&](const auto& object) { return object.isFocused && object.name == name; });
        });
    }

    static void quit(Program& program) {
        press("ctrl+q");
        EXPECT_EQ(program.waitForExit(), 0) << program.errors();
    }

    static inline const Program::Environment withoutDisplay = {{"DISPLAY", std::nullopt},
                                                               {"WAYLAND_DISPLAY", std::nullopt}};

    TestSupport::HTTPServer server;
};

struct Layout {
    const char* name;
    int keycodeOfQ;
};

/// Tests the real program with the keyboard layout that the parameter selects.
class ProgramLayoutTest : public ProgramTest, public testing::WithParamInterface<Layout> {
protected:
    void SetUp() override { setLayout(GetParam().name); }
    void TearDown() override { setLayout("us"); }

    static void setLayout(const std::string& name) {
        EXPECT_EQ(Program("/usr/bin/env", {"setxkbmap", name}).waitForExit(), 0) << name;
    }
};

INSTANTIATE_TEST_SUITE_P(On, ProgramLayoutTest,
                         testing::Values(Layout{"us", 24}, Layout{"de", 24}, Layout{"fr", 38}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_P(ProgramLayoutTest, isQuitByControlAndTheKeyThatTypesQ) {
    const auto program = start({page("/given")});
    ASSERT_TRUE(waitForFocus("/given"));
    const auto key = [](int code) { askXdotool("keydown ctrl key " + std::to_string(code) + " keyup ctrl"); };
    // Press a key that types Q on another layout but not on the current layout. The program must not quit.
    key(GetParam().keycodeOfQ == 24 ? 38 : 24);
    EXPECT_TRUE(program->isRunning());
    key(GetParam().keycodeOfQ);
    EXPECT_EQ(program->waitForExit(), 0) << program->errors();
}

TEST_F(ProgramTest, startsWithOneBlankTabThatWaitsForAnAddress) {
    const auto program = start();
    ASSERT_TRUE(waitForWindows({"New Tab"}));
    ASSERT_TRUE(waitForFocus("New Tab"));
    type(page("/typed"));
    press("Return");
    ASSERT_TRUE(waitForWindows({"/typed"}));
    quit(*program);
}

TEST_F(ProgramTest, startsWithThePageItIsGivenAndNoOther) {
    const auto program = start({page("/given")});
    ASSERT_TRUE(waitForWindows({"/given"}));
    // If the program had also opened a blank tab, closing the page's tab would select the blank tab.
    ASSERT_TRUE(waitForFocus("/given"));
    press("ctrl+w");
    ASSERT_TRUE(waitForWindows({}));
    EXPECT_TRUE(program->isRunning());
}

TEST_F(ProgramTest, aWordIsNoAddressAndNoError) {
    const auto program = start({"example.test"});
    ASSERT_TRUE(waitForWindows({"New Tab"}));
    startAgain({"example.test"});
    EXPECT_EQ(windows(), Lines{"New Tab"});
    ASSERT_TRUE(waitForFocus("New Tab"));
    EXPECT_EQ(program->errors().find("Keyloft"), std::string::npos) << program->errors();
    quit(*program);
}

TEST_F(ProgramTest, printsHelpAndVersionWithoutADisplay) {
    const auto helped = start({"--help", "--unknown"}, withoutDisplay);
    EXPECT_EQ(helped->nextLine(), "Usage: keyloft [OPTION] [URL]...");
    EXPECT_EQ(helped->waitForExit(), 0);
    EXPECT_EQ(helped->errors(), "");
    const auto named = start({page("/given"), "--version"}, withoutDisplay);
    EXPECT_EQ(named->nextLine(), "Keyloft " KEYLOFT_VERSION);
    EXPECT_EQ(named->nextLine(), std::nullopt);
    EXPECT_EQ(named->waitForExit(), 0);
    EXPECT_EQ(named->errors(), "");
    EXPECT_EQ(server.count("/given"), 0U);
}

TEST_F(ProgramTest, refusesAnUnknownOptionInOneLine) {
    const std::pair<std::string, std::string> options[] = {{"--unknown", "--unknown"},
                                                           {"-x", "-x"},
                                                           {"-NSUnknown", "-NSUnknown"},
                                                           {"--two\nlines", "--two\\nlines"}};
    for (const auto& [option, shown] : options) {
        const auto program = start({page("/given"), option, "--help"});
        EXPECT_EQ(program->waitForExit(), 2);
        EXPECT_EQ(program->nextLine(), std::nullopt);
        EXPECT_EQ(program->errors(),
                  "keyloft: unknown option \"" + shown + "\"; \"keyloft --help\" lists the options\n");
    }
    EXPECT_EQ(server.count("/given"), 0U);
}

TEST_F(ProgramTest, takesEveryArgumentAfterTwoHyphensAsAURL) {
    const auto program = start({"-", "--", "--help", "-x", page("/given")});
    ASSERT_TRUE(waitForWindows({"/given"}));
    ASSERT_TRUE(waitForFocus("/given"));
    quit(*program);
}

TEST_F(ProgramTest, saysInOneLineThatItNeedsADisplay) {
    const Program::Environment environments[] = {withoutDisplay,
                                                 {{"DISPLAY", ":54321"}, {"WAYLAND_DISPLAY", "nonexistent"}}};
    for (const auto& environment : environments) {
        const auto program = start({page("/given")}, environment);
        EXPECT_EQ(program->waitForExit(), 1);
        EXPECT_NE(program->errors().find("Keyloft needs a display"), std::string::npos);
        EXPECT_EQ(std::ranges::count(program->errors(), '\n'), 1) << program->errors();
    }
}

TEST_F(ProgramTest, aSecondStartNeedsNoDisplay) {
    const auto program = start({page("/one")});
    ASSERT_TRUE(waitForWindows({"/one"}));
    const auto second = start({page("/two")}, withoutDisplay);
    EXPECT_EQ(second->waitForExit(), 0) << second->errors();
    EXPECT_TRUE(waitForWindows({"/two"}));
}

TEST_F(ProgramTest, theAboutPanelObeysTheMenusKeys) {
    const auto program = start({page("/one")});
    ASSERT_TRUE(waitForFocus("/one"));
    const auto openPanel = [] {
        for (const char* key : {"F10", "Return"}) {
            press(key);
        }
        return waitForFocus("About Keyloft");
    };
    ASSERT_TRUE(openPanel());
    press("ctrl+w");
    ASSERT_TRUE(waitForFocus("/one"));
    EXPECT_EQ(windows(), Lines{"/one"});
    ASSERT_TRUE(openPanel());
    quit(*program);
}

TEST_F(ProgramTest, itsKeyQuitsFromEveryField) {
    struct Field {
        std::string name;
        Lines keys;
    };
    for (const Field& field :
         {Field{"Address", {"ctrl+l"}}, Field{"Search DuckDuckGo", {"ctrl+l", "Tab", "Tab"}}}) {
        const auto program = start();
        ASSERT_TRUE(waitForFocus("New Tab"));
        for (const auto& key : field.keys) {
            press(key);
        }
        ASSERT_TRUE(waitForField(*program, field.name));
        quit(*program);
    }
}

TEST_F(ProgramTest, itsKeyQuitsFromAPageThatTakesEveryKey) {
    server.route("/taking",
                 HTTPResponse::html("<title>/taking</title><script>addEventListener('keydown', e => {"
                                    "document.title = 'taken'; e.preventDefault() })</script>"));
    const auto program = start({server.url("/taking")});
    ASSERT_TRUE(waitForFocus("/taking"));
    askXdotool("getactivewindow mousemove --window %1 500 500 click 1");
    ASSERT_TRUE(eventually([] {
        press("x");
        return windows() == Lines{"taken"};
    }));
    quit(*program);
}

TEST_F(ProgramTest, everyPageIsAskedForAsItWasGiven) {
    struct Given {
        std::string argument;
        std::string path;
        std::string seen;
    };
    const std::vector<Given> pages = {
        {"/plain", "/plain", "%2Fplain"},   {"/part#frag", "/part", "%2Fpart%23frag"},
        {"/a%2Fb", "/a%2Fb", "%2Fa%252Fb"}, {"/a b", "/a%20b", "%2Fa%2520b"},
        {"/ü", "/%C3%BC", "%2F%25C3%25BC"},
    };
    Lines first;
    Lines second;
    Lines expected;
    for (const auto& given : pages) {
        page(given.path);
        first.push_back(server.url(given.argument));
        // The second process opens the same pages with an additional query, so that the reports of the two
        // processes can be distinguished.
        const auto hash = given.argument.find('#');
        second.push_back(server.url(given.argument.substr(0, hash) + "?2" +
                                    (hash == std::string::npos ? "" : given.argument.substr(hash))));
        expected.push_back(given.seen);
        const auto seenHash = given.seen.find("%23");
        expected.push_back(given.seen.substr(0, seenHash) + "%3F2" +
                           (seenHash == std::string::npos ? "" : given.seen.substr(seenHash)));
    }
    std::ranges::sort(expected);
    // Schemes are compared case-sensitively, so a URL with the scheme "HTTP" is ignored.
    page("/upper");
    auto upper = server.url("/upper");
    upper.replace(0, 4, "HTTP");
    first.insert(first.begin() + 1, upper);
    second.insert(second.begin(), upper);

    const auto program = start(first);
    ASSERT_TRUE(eventually([&] { return seen().size() == pages.size(); }));
    startAgain(second);
    EXPECT_TRUE(eventually([&] { return seen() == expected; })) << testing::PrintToString(seen());
    EXPECT_EQ(server.count("/upper"), 0U);
}

TEST_F(ProgramTest, aSecondStartHandsItsPagesToTheFirst) {
    const auto program = start({page("/one")});
    ASSERT_TRUE(waitForWindows({"/one"}));
    startAgain({page("/two"), page("/three")});
    ASSERT_TRUE(waitForWindows({"/three"}));
    ASSERT_TRUE(waitForFocus("/three"));
    for (const char* left : {"/two", "/one"}) {
        press("ctrl+w");
        ASSERT_TRUE(waitForWindows({left}));
    }
    quit(*program);
}

TEST_F(ProgramTest, theBusStartsItAndHandsItFurtherPages) {
    std::stringstream service;
    service << std::ifstream(KEYLOFT_SERVICE).rdbuf();
    const std::string installed = "Exec=/usr/bin/env keyloft ";
    auto text = service.str();
    ASSERT_NE(text.find(installed), std::string::npos);
    text.replace(text.find(installed), installed.size(), "Exec=" KEYLOFT_PROGRAM " ");
    const auto file = TestSupport::sessionDirectory() / "services" / "velde.orvane.keyloft.service";
    std::ofstream(file) << text;
    const std::string bus = "org.freedesktop.DBus";
    ASSERT_TRUE(TestSupport::callOverBus(bus, "/org/freedesktop/DBus", bus + ".ReloadConfig"));
    ASSERT_TRUE(TestSupport::activate({page("/one")}));
    ASSERT_TRUE(waitForWindows({"/one"}));
    ASSERT_TRUE(TestSupport::activate({page("/two"), page("/three")}));
    ASSERT_TRUE(waitForWindows({"/three"}));
    startAgain({page("/four")});
    ASSERT_TRUE(waitForWindows({"/four"}));
    ASSERT_TRUE(waitForFocus("/four"));
    press("ctrl+q");
    ASSERT_TRUE(waitForWindows({}));
    // The exiting program may still own its bus name, so repeat the activation.
    ASSERT_TRUE(eventually([] { return TestSupport::activate(); }));
    ASSERT_TRUE(waitForWindows({"New Tab"}));
    ASSERT_TRUE(waitForFocus("New Tab"));
    press("ctrl+q");
    ASSERT_TRUE(waitForWindows({}));
    std::filesystem::remove(file);
}

TEST_F(ProgramTest, staysWithoutAWindowAndOpensOneWhenStartedAgain) {
    const auto program = start({page("/one")});
    ASSERT_TRUE(waitForWindows({"/one"}));
    ASSERT_TRUE(waitForFocus("/one"));
    press("alt+F4");
    ASSERT_TRUE(waitForWindows({}));
    startAgain();
    ASSERT_TRUE(waitForWindows({"New Tab"}));
    ASSERT_TRUE(waitForFocus("New Tab"));
    press("ctrl+w");
    ASSERT_TRUE(waitForWindows({}));
    startAgain({page("/two")});
    ASSERT_TRUE(waitForWindows({"/two"}));
    EXPECT_TRUE(program->isRunning());
    ASSERT_TRUE(waitForFocus("/two"));
    quit(*program);
}

TEST_F(ProgramTest, startingAgainBringsHiddenWindowsBackWithoutABlankTab) {
    const auto program = start({page("/one")});
    ASSERT_TRUE(waitForWindows({"/one"}));
    ASSERT_TRUE(waitForFocus("/one"));
    for (const Lines& arguments : {Lines{}, Lines{page("/two")}}) {
        press("ctrl+h");
        ASSERT_TRUE(waitForWindows({}));
        startAgain(arguments);
        ASSERT_TRUE(waitForWindows({arguments.empty() ? "/one" : "/two"}));
        ASSERT_TRUE(waitForFocus(arguments.empty() ? "/one" : "/two"));
    }
    press("ctrl+w");
    ASSERT_TRUE(waitForWindows({"/one"}));
    press("ctrl+w");
    EXPECT_TRUE(waitForWindows({}));
}

TEST_F(ProgramTest, anotherProgramInFrontDoesNotChangeWherePagesGo) {
    const auto program = start({page("/one")});
    ASSERT_TRUE(waitForWindows({"/one"}));
    const Program other(KEYLOFT_OTHER_PROGRAM, {});
    ASSERT_TRUE(waitForFocus("Other Program"));
    startAgain({page("/two")});
    ASSERT_TRUE(waitForWindows({"/two"}));
    EXPECT_TRUE(waitForFocus("/two"));
}

TEST_F(ProgramTest, runsWithoutASessionBus) {
    // Start the accessibility bus first. Programs find it through the display even without a session bus.
    TestSupport::accessibleObjects(::getpid());
    const std::optional<std::string> addresses[] = {"unix:path=/nonexistent/bus", std::nullopt};
    for (const auto& address : addresses) {
        const auto program = start({page("/one")}, {{"DBUS_SESSION_BUS_ADDRESS", address}});
        ASSERT_TRUE(waitForWindows({"/one"}));
        ASSERT_TRUE(waitForFocus("/one"));
        quit(*program);
        ASSERT_TRUE(waitForWindows({}));
    }
}

TEST_F(ProgramTest, afterACrashItStartsAnew) {
    const auto first = start({page("/one")});
    ASSERT_TRUE(waitForWindows({"/one"}));
    first->signal(SIGKILL);
    ASSERT_TRUE(waitForWindows({}));
    const auto next = start({page("/two")});
    ASSERT_TRUE(waitForWindows({"/two"}));
    ASSERT_TRUE(waitForFocus("/two"));
    quit(*next);
}

TEST_F(ProgramTest, theWindowComesBackAsItWasLeft) {
    const auto geometry = [](const char* title) {
        const auto lines =
            askXdotool("search --onlyvisible --name '^" + std::string(title) + "$' getwindowgeometry %@");
        return lines.size() < 3 ? "" : lines[2].substr(lines[2].find(':') + 2);
    };
    auto program = start();
    ASSERT_TRUE(waitForWindows({"New Tab"}));
    ASSERT_TRUE(waitForFocus("New Tab"));
    const auto firstWidth = geometry("New Tab").substr(0, 5);
    EXPECT_EQ(firstWidth, "1100x");
    // The size of a window may still change just after the window is shown, so repeat the resize.
    ASSERT_TRUE(eventually([&] {
        askXdotool("search --onlyvisible --name '^New Tab$' windowsize %@ 900 700");
        return geometry("New Tab") == "900x700";
    }));
    // GTK would handle a key press before a resize that arrives at the same time, so wait until the program
    // has handled the resize.
    ASSERT_TRUE(waitForField(*program, "Address"));
    quit(*program);

    program = start();
    ASSERT_TRUE(waitForWindows({"New Tab"}));
    EXPECT_TRUE(eventually([&] { return geometry("New Tab") == "900x700"; })) << geometry("New Tab");
    const auto folder = TestSupport::sessionDirectory() / "state" / "velde.orvane.keyloft";
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
}

} // namespace
