// The modal form without buttons that stands on the screen while a file downloads; it runs
// the download itself when it first becomes the active window.
#pragma once

#include <string>

#include "platform/Forms.h"

namespace morvane {
namespace platform {
class AtomicFile;
}

class frmFileDownloadProgress final : public forms::Form {
public:
    explicit frmFileDownloadProgress(forms::Toolkit& toolkit);

    void SetURL(std::string url) { url_ = std::move(url); }
    void SetPostData(std::string data) { postData_ = std::move(data); }
    void SetDownloadPath(std::string path) { downloadPath_ = std::move(path); }
    void SetFileTitle(std::string title) { fileTitle_ = std::move(title); }
    // Into a version the caller opened instead of the path and title.
    void SetTarget(platform::AtomicFile* into) { into_ = into; }
    // "True" or "False" once the download ran, else "".
    const std::string& ReturnString() const { return returnString_; }

protected:
    void OnLoad() override;
    void OnActivate() override;

private:
    std::string url_, postData_, downloadPath_, fileTitle_, returnString_;
    platform::AtomicFile* into_ = nullptr;
    bool shown_ = false;
};

}  // namespace morvane
