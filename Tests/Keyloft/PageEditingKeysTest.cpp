#include "Tests/Keyloft/AppDelegateTest.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::pressKey;
using TestSupport::runUntil;
using TestSupport::typeText;

namespace {

/// Presses editing keys while the page has the focus. Items of the Edit menu have the same key equivalents,
/// but each key press must perform only one edit.
class PageEditingKeysTest : public AppDelegateTest {
protected:
    /// Opens a page with a text area that has the focus. The page's title is the contents of the text area,
    /// followed by the types of its input events in order.
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

    /// Types a character and waits until the page has the title `title`, which also lists all earlier edits.
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
    // If WebKitGTK had also handled one of these keys, the title would be different.
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
