#pragma once

#include "Platform/AppKit/TextField.h"

namespace Platform {

/// A text field with the look of a search box. It sends the whole text, and only on Return; Escape empties
/// it.
class SearchField : public TextField {
public:
    static std::shared_ptr<SearchField> create();

protected:
    SearchField() = default;
    std::unique_ptr<Native> makeNative() override;
    bool isEmptiedByEscape() const override { return true; }
};

} // namespace Platform
