#include "Tests/Keyloft/AppDelegateTest.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::pressKey;
using TestSupport::runUntil;
using TestSupport::typeText;

namespace {

/// The editing keys with the keyboard in the page. The menu has the same keys; whatever happens must happen
/// once.
class PageEditingKeysTest : public AppDelegateTest {
protected:
    /// Opens a page with a text area that has the keyboard. The page's title is the area's text and, in
    /// order, the kinds of change that came to it.
    void openEditor(const std::string& script = "") {
        server.route("/editor",
                     HTTPResponse::html("<title>editor</title><textarea id=area></textarea><script>"
                                        "const kinds = []; const show = () => document.title ="
                                        "    area.value + '|' + kinds.join(' ');"
                                        "area.addEventListener('input', event => {"
                                        "    kinds.push(event.inputType); show() });"
                                        "onload = () => area.focus();" +
                                        script + "</script>"));
        tab = delegate->openTab(serverURL("/editor"), nullptr, nullptr);
        ASSERT_TRUE(waitForTitle(tab, "editor"));
        TestSupport::activate(*tab->window());
        ASSERT_TRUE(runUntil([&] { return TestSupport::hasFocus(*tab->webView()); }));
    }

    /// Types a character and waits until it has come; the changes before it are told with it.
    [[nodiscard]] bool typeCharacter(const std::string& text, const std::string& title) {
        typeText(text);
        return waitForTitle(tab, title);
    }

    Tab tab;
};

} // namespace

TEST_F(PageEditingKeysTest, undoAndRedoWorkOnce) {
    openEditor();
    ASSERT_TRUE(typeCharacter("a", "a|insertText"));
    pressKey("ctrl+z");
    ASSERT_TRUE(waitForTitle(tab, "|insertText historyUndo"));
    pressKey("ctrl+shift+z");
    ASSERT_TRUE(waitForTitle(tab, "a|insertText historyUndo historyRedo"));
    EXPECT_TRUE(typeCharacter("b", "ab|insertText historyUndo historyRedo insertText"));
}

TEST_F(PageEditingKeysTest, selectAllCutCopyAndPasteWorkOnce) {
    openEditor();
    ASSERT_TRUE(typeCharacter("a", "a|insertText"));
    pressKey("ctrl+a");
    pressKey("ctrl+x");
    ASSERT_TRUE(waitForTitle(tab, "|insertText deleteByCut"));
    pressKey("ctrl+v");
    ASSERT_TRUE(waitForTitle(tab, "a|insertText deleteByCut insertFromPaste"));
    pressKey("ctrl+v");
    ASSERT_TRUE(waitForTitle(tab, "aa|insertText deleteByCut insertFromPaste insertFromPaste"));
    pressKey("ctrl+a");
    pressKey("ctrl+c");
    pressKey("End");
    pressKey("ctrl+v");
    ASSERT_TRUE(
        waitForTitle(tab, "aaaa|insertText deleteByCut insertFromPaste insertFromPaste insertFromPaste"));
    EXPECT_TRUE(typeCharacter(
        "b", "aaaab|insertText deleteByCut insertFromPaste insertFromPaste insertFromPaste insertText"));
}

TEST_F(PageEditingKeysTest, anUndoOfThePagesOwnIsTheOnlyOne) {
    openEditor("addEventListener('keydown', event => { if (event.ctrlKey && event.key.length === 1) {"
               "    event.preventDefault(); kinds.push('own:' + event.key); show() } });");
    ASSERT_TRUE(typeCharacter("a", "a|insertText"));
    std::string expected = "a|insertText";
    for (const char* key : {"z", "a", "x", "c", "v"}) {
        pressKey(std::string("ctrl+") + key);
        expected += std::string(" own:") + key;
        ASSERT_TRUE(waitForTitle(tab, expected)) << key;
    }
    pressKey("ctrl+shift+z");
    expected += " own:Z";
    ASSERT_TRUE(waitForTitle(tab, expected));
    // What the engine had done with any of these keys would be seen by now.
    EXPECT_TRUE(typeCharacter("b", "ab" + expected.substr(1) + " insertText"));
}

TEST_F(PageEditingKeysTest, aPageThatEditsNothingStandsThem) {
    tab = openPage("/page");
    TestSupport::activate(*tab->window());
    for (const char* key : {"ctrl+z", "ctrl+shift+z", "ctrl+x", "ctrl+v", "ctrl+a", "ctrl+c"}) {
        pressKey(key);
    }
    pressKey("ctrl+l");
    ASSERT_TRUE(runUntil([&] { return TestSupport::hasFocus(*tab->addressField()); }));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/page"));
    EXPECT_FALSE(tab->isEditingAddress());
    EXPECT_EQ(tab->webView()->title(), "/page");
}
