#pragma once

#include "Platform/AppKit/Control.h"

#include <string>

namespace Platform {

/// A push button with a title or an image.
class Button : public Control {
public:
    enum class BezelStyle { texturedRounded, recessed };

    static std::shared_ptr<Button> create();
    static std::shared_ptr<Button> create(const std::string& title, const std::weak_ptr<Responder>& target,
                                          Action action);

    /// The title, which is shown verbatim, without interpreting markup or mnemonics.
    const std::string& title() const { return title_; }

    /// The image that is shown instead of the title. Its description is the button's accessible name.
    const std::optional<Image>& image() const { return image_; }
    void setImage(const Image& image);

    BezelStyle bezelStyle() const { return bezelStyle_; }
    void setBezelStyle(BezelStyle style);
    bool isBordered() const { return bordered_; }
    void setBordered(bool bordered);

protected:
    Button() = default;
    std::unique_ptr<Native> makeNative() override;
    void applyFont(Native& native) override;

private:
    void applyImage(Native& native) const;
    void applyStyle(Native& native) const;

    std::string title_;
    std::optional<Image> image_;
    BezelStyle bezelStyle_ = BezelStyle::texturedRounded;
    bool bordered_ = true;
};

} // namespace Platform
