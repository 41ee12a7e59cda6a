// The dialog for rosters that differ in a few customers: for each customer found on one side
// only, the user chooses to add it on the other side or to delete it.
#pragma once

#include <string>

#include "platform/Forms.h"

namespace morvane {

class cCustList;

class frmSelectCompareCustList final : public forms::Form {
public:
    explicit frmSelectCompareCustList(forms::Toolkit& toolkit);

    void SetLocalDB(std::string localDb) { localDb_ = std::move(localDb); }
    void SetServerData(cCustList* serverData) { serverData_ = serverData; }
    // Comma texts of the customers found only locally, and only on the server.
    void SetOnlyLc_IDs(std::string ids) { onlyLcIDs_ = std::move(ids); }
    void SetOnlySv_IDs(std::string ids) { onlySvIDs_ = std::move(ids); }

    // The user's choices as comma texts, once the dialog is confirmed.
    const std::string& AddLocalDs() const { return addLocalDs_; }
    const std::string& AddServerDs() const { return addServerDs_; }
    const std::string& DelLocalDs() const { return delLocalDs_; }
    const std::string& DelServerDs() const { return delServerDs_; }
    bool bCancel() const { return cancel_; }

protected:
    void OnLoad() override;
    void OnQueryUnload(forms::CloseReason reason, bool& cancel) override;

private:
    enum class Side { Local, Server };
    void AddRow(std::int32_t id, Side side, const std::string& code, const std::string& name);
    void Choose(int row, int col, const std::string& choice);
    void Execute();

    std::string localDb_;
    cCustList* serverData_ = nullptr;
    std::string onlyLcIDs_, onlySvIDs_;
    std::string addLocalDs_, addServerDs_, delLocalDs_, delServerDs_;
    bool cancel_ = false;
};

}  // namespace morvane
