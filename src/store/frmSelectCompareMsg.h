// The dialog that asks the user which side's data to keep when the comparison could not
// tell: it shows both stamps, marks the newer, and confirms the choice.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Forms.h"

namespace morvane {

class frmSelectCompareMsg final : public forms::Form {
public:
    explicit frmSelectCompareMsg(forms::Toolkit& toolkit);

    // The data's title and the three stamps of the comparison that gave 3.
    void SetData(const std::string& dataTitle, std::string server, std::string local,
                 std::string check);
    // 0 cancelled, 1 the server's data, 2 the local data.
    std::int32_t DlgResult() const { return dlgResult_; }

protected:
    void OnLoad() override;

private:
    void Select(int index);

    std::string server_, local_, check_;
    std::int32_t dlgResult_ = 0;
};

// Shows the dialog modally over the owner with the stamps of the last comparison.
std::int32_t ShowCompareMsgDlg(forms::Form* owner, const std::string& dataTitle);

}  // namespace morvane
