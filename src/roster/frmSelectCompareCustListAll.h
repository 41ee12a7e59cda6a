// The dialog for rosters that differ too much to reconcile customer by customer: it shows
// both whole and lets the user take one side, or stop.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Forms.h"

namespace morvane {

class cCustList;

class frmSelectCompareCustListAll final : public forms::Form {
public:
    explicit frmSelectCompareCustListAll(forms::Toolkit& toolkit);

    void SetLocalDB(std::string localDb) { localDb_ = std::move(localDb); }
    void SetServerData(const cCustList* serverData) { serverData_ = serverData; }
    // -1 cancelled (also before any choice), 1 take the server's roster, 2 the local one.
    std::int32_t DlgResult() const { return dlgResult_; }

protected:
    void OnLoad() override;

private:
    void FillLocal();
    void FillServer();
    void Adopt(std::int32_t result, const char* firstLine, const char* secondLine);
    void Cancel();

    std::string localDb_;
    const cCustList* serverData_ = nullptr;
    std::int32_t dlgResult_ = -1;
};

}  // namespace morvane
