// The dialog in which the user chooses which customers are backed up: the roster in a grid
// with one changeable cell a row, and OK only once the account's allowance is met exactly.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Forms.h"

namespace morvane {

class cCustListSync;

class frmSelectEnabledCustList final : public forms::Form {
public:
    explicit frmSelectEnabledCustList(forms::Toolkit& toolkit);

    // Set before the show. Showtype "1" takes customers out, "2" puts them in, any other
    // text only shows the list.
    std::string LocalDB;
    const cCustListSync* ServerData = nullptr;
    std::string Showtype;

    // Read after the show: comma texts of the customers whose target changed, by direction.
    const std::string& EnabledIDs() const { return enabledIDs_; }
    const std::string& DisabledIDs() const { return disabledIDs_; }
    bool bCancel() const { return cancel_; }

    static constexpr const char* kBackup = "バックアップする";
    static constexpr const char* kNoBackup = "× バックアップしない";
    static constexpr const char* kFixed = "(変更不可)";

    // Grid columns; the header row is the grid's headers, the first column is fixed.
    static constexpr int kColFixed = 0;
    static constexpr int kColCode = 1;
    static constexpr int kColName = 2;
    static constexpr int kColTarget = 5;
    static constexpr int kCols = 6;

protected:
    void OnLoad() override;
    void OnQueryUnload(forms::CloseReason reason, bool& cancel) override;

private:
    void Fill();
    bool Changeable(int row) const;
    void SetTarget(int row, const std::string& text);
    void SetAll(const char* text);
    void Recount();
    void cmdDo_Click();

    forms::Grid* grid_ = nullptr;
    forms::Button* cmdDo_ = nullptr;
    std::int32_t max_ = 0;
    std::string enabledIDs_;
    std::string disabledIDs_;
    bool cancel_ = false;
};

}  // namespace morvane
