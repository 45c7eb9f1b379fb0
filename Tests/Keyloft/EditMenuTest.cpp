#include "Tests/Keyloft/AppDelegateTest.h"

using TestSupport::hasFocus;
using TestSupport::HTTPResponse;
using TestSupport::pressKey;
using TestSupport::runUntil;
using TestSupport::typeText;

namespace {

enum class Place { addressField, searchField, page };

void PrintTo(Place place, std::ostream* stream) {
    switch (place) {
    case Place::addressField:
        *stream << "addressField";
        break;
    case Place::searchField:
        *stream << "searchField";
        break;
    case Place::page:
        *stream << "page";
        break;
    }
}

/// Chooses items of the Edit menu with the mouse while text is being edited in a text field or in a page,
/// depending on the test parameter.
class EditMenuTest : public AppDelegateTest, public testing::WithParamInterface<Place> {
protected:
    /// Types `text` into the text field or page that the test parameter selects, and leaves the focus there.
    void edit(const std::string& text) {
        server.route("/",
                     HTTPResponse::html("<title>ready</title><input><script>"
                                        "const input = document.querySelector('input');"
                                        "input.oninput = () => document.title = input.value;"
                                        "input.onselect = () => document.title = 'selected ' +"
                                        "    input.value.slice(input.selectionStart, input.selectionEnd);"
                                        "onload = () => input.focus()</script>"));
        tab = launch();
        TestSupport::activate(*tab->window());
        tab->load(serverURL("/"));
        ASSERT_TRUE(waitForTitle(tab, "ready"));
        if (GetParam() == Place::page) {
            ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->webView()); }));
        } else {
            field()->selectText();
        }
        typeText(text);
        expectText(text);
    }

    std::shared_ptr<Platform::TextField> field() const {
        return GetParam() == Place::addressField ? tab->addressField() : tab->searchField();
    }

    void choose(const std::string& item) const { TestSupport::chooseFromMenu(*tab->window(), "Edit", item); }

    std::string text() const {
        return GetParam() == Place::page ? tab->webView()->title().value_or("") : field()->stringValue();
    }

    void expectText(const std::string& expected) const {
        EXPECT_TRUE(runUntil([&] { return text() == expected; })) << text() << " for " << expected;
    }

    void expectSelected(const std::string& expected) const {
        if (GetParam() == Place::page) {
            expectText("selected " + expected);
        } else {
            EXPECT_TRUE(runUntil([&] { return TestSupport::selectedText(*field()) == expected; }));
        }
    }

    Tab tab;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(In, EditMenuTest,
                         testing::Values(Place::addressField, Place::searchField, Place::page),
                         testing::PrintToStringParamName());

TEST_P(EditMenuTest, pasteInsertsAtTheInsertionPoint) {
    edit("xyz");
    choose("Select All");
    expectSelected("xyz");
    choose("Copy");
    pressKey("End");
    pressKey("Left");
    choose("Paste");
    expectText("xyxyzz");
    // The insertion point is after the pasted text.
    typeText("1");
    expectText("xyxyz1z");
}

TEST_P(EditMenuTest, cutTakesTheSelectionAlone) {
    edit("xyz");
    pressKey("shift+Left");
    choose("Cut");
    expectText("xy");
    pressKey("Home");
    choose("Paste");
    expectText("zxy");
}

TEST_P(EditMenuTest, undoTakesBackAPasteAndRedoRepeatsIt) {
    edit("xyz");
    choose("Select All");
    expectSelected("xyz");
    choose("Copy");
    pressKey("End");
    choose("Paste");
    expectText("xyzxyz");
    choose("Undo");
    // How much text a single Undo reverts depends on the field, so only expect that the text changes.
    EXPECT_TRUE(runUntil([&] { return text() != "xyzxyz"; }));
    choose("Redo");
    expectText("xyzxyz");
}

TEST_P(EditMenuTest, selectAllSelectsForTheNextKey) {
    edit("xyz");
    choose("Select All");
    expectSelected("xyz");
    typeText("1");
    expectText("1");
}
