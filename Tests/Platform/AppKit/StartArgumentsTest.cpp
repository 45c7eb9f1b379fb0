#include "Platform/AppKit/StartArguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> handedOver(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size());
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    std::vector<std::string> texts;
    for (const Platform::URL& url : Platform::urlsOf(pointers)) {
        texts.push_back(url.absoluteString());
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(StartArguments, AreURLsWithASchemeInTheOrderGiven) {
    EXPECT_EQ(handedOver({"https://a.example/", "mailto:b@c.example", "HTTP://d.example"}),
              (Texts{"https://a.example/", "mailto:b@c.example", "HTTP://d.example"}));
}

TEST(StartArguments, AreNotFileNamesOptionsOrEmptyTexts) {
    EXPECT_EQ(handedOver({"page.html", "-NSSomething", "YES", "", "//a.example/"}), Texts{});
}

TEST(StartArguments, MayBeNone) { EXPECT_EQ(handedOver({}), Texts{}); }

} // namespace
