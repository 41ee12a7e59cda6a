// The component as the command line's sync sees it: one public object, its members called
// by name through the dispatch table, the login taken from the saved settings.
#pragma once

#include "SyncRun.h"
#include "component/ctrlMorvane.h"

namespace morvane::cli {

class ObjectComponent final : public Component {
public:
    bool Has(std::string_view member) const override;
    Value Call(std::string_view member, const std::vector<Value>& args) override;
    int LoginFromSettings() override;
    int LoginWithSavedPassword() override;
    int LoginState() const override;
    ExchangeCounts Exchanges() const override;
    SeenStamps TakeComparedStamps() override;
    bool RosterUploadIDs(const std::string& localDb, std::string& add, std::string& del,
                         std::string& update) override;
    std::vector<std::int32_t> LocalCustomerIDs(const std::string& localDb) override;
    std::vector<std::string> DataFiles(const std::string& localDb, const std::string& table,
                                       std::int32_t custId) override;
    std::vector<FormOwner> FormOwners(const std::string& prefDb, const std::string& table,
                                      std::int32_t custId) override;
    std::map<std::int32_t, std::uint64_t> LocalFingerprints(
        const std::vector<LocalTable>& tables, const std::filesystem::path& filesDir) override;
    int LiveRows(const LocalTable& table, std::int32_t custId) override;
    DateValue ServerNow() override;
    std::string UnreachableReason() override;
    int RowCount(const LocalTable& table, std::int32_t custId) override;

private:
    ctrlMorvane obj_;
};

}  // namespace morvane::cli
