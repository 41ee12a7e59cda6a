// The public object of the component: the host creates it and drives the whole online
// backup through its members, which never throw and answer with small integer codes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Forms.h"
#include "util/Value.h"

namespace morvane {

class ctrlMorvane {
public:
    // Starts with the object usage option 0 and a reset login, for every object of the process.
    ctrlMorvane();
    // Stops the login timer and empties every slot; no logout is ever sent.
    ~ctrlMorvane();
    ctrlMorvane(const ctrlMorvane&) = delete;
    ctrlMorvane& operator=(const ctrlMorvane&) = delete;

    // The toolkit that shows the component's dialogs (headless when none is set).
    static void UseToolkit(std::shared_ptr<forms::Toolkit> toolkit);

    // ---- Session and settings
    void setObjectUsage(std::int32_t n);
    std::int32_t LoginState() const;
    void SetDisableMorvane();
    std::string LoginAccountUserName() const;
    std::string LoginAccountContractorName() const;
    std::string LoginAccountContractBegin() const;
    std::string LoginAccountContractEnd() const;
    std::string LoginAccountSharedCount() const;
    std::string LoginAccountMaxCustomer() const;

    // ---- Login dialog, keep-alive timer, login hand-over and settings dialog
    std::int32_t ShowLogin(forms::Form* OwnerForm);
    void StartLoginTimer(bool bMust);
    std::int32_t RegLoginInfoToPrefCustom();
    std::int32_t ClearLoginInfoToPrefCustom();
    std::int32_t GetLoginInfoFromPrefCustom();
    std::int32_t ShowSetting(forms::Form* OwnerForm);
    std::int32_t ShowInfo(forms::Form* OwnerForm);

private:
    // Worker slots, one per kind, added with the members that fill them.
};

}  // namespace morvane
