// The small modal form without buttons that stands on the screen while a judged request
// runs; it runs the exchange itself when it first becomes the active window.
#pragma once

#include <string>
#include <string_view>

#include "platform/Forms.h"

namespace morvane {

class frmSendRequestProgress final : public forms::Form {
public:
    explicit frmSendRequestProgress(forms::Toolkit& toolkit);

    void SetURL(std::string url) { url_ = std::move(url); }
    void SetPostData(std::string data) { postData_ = std::move(data); }
    // An empty text shows the standard line; any other text leaves the label blank.
    void ShowMsgString(std::string_view text);
    const std::string& ReturnString() const { return returnString_; }

protected:
    void OnLoad() override;
    void OnActivate() override;

private:
    forms::Label& lblInfo_;
    std::string url_;
    std::string postData_;
    std::string returnString_;
    bool shown_ = false;
};

}  // namespace morvane
