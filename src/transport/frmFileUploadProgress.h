// The modal form without buttons that stands on the screen while a file uploads; it checks
// that the file is there and not too large, then sends it, when it first becomes active.
#pragma once

#include <string>

#include "platform/Forms.h"

namespace morvane {

class frmFileUploadProgress final : public forms::Form {
public:
    explicit frmFileUploadProgress(forms::Toolkit& toolkit);

    void SetURL(std::string url) { url_ = std::move(url); }
    void SetUserID(std::string id) { userId_ = std::move(id); }
    void SetToken(std::string token) { token_ = std::move(token); }
    void SetCustomerID(std::string id) { customerId_ = std::move(id); }
    void SetFileName(std::string path) { fileName_ = std::move(path); }
    // The server's reply when the reply check passed it, else "".
    const std::string& ReturnString() const { return returnString_; }

protected:
    void OnLoad() override;
    void OnActivate() override;

private:
    void Upload();

    std::string url_, userId_, token_, customerId_, fileName_, returnString_;
    bool shown_ = false;
};

}  // namespace morvane
