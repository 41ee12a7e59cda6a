// Creates and removes one customer on the server: only its existence and its identifying
// fields, the rest of its data follows in later calls.
#pragma once

#include <cstdint>
#include <string>

namespace morvane {

class cCustAddDel {
public:
    std::int32_t CustomerID = 0;

    // Sends the customer's row of tCustomer (deleted or not); 1 when the server took it,
    // 0 when there is no row (nothing is sent then) or the exchange failed.
    std::int32_t SyncUploadAddCustomer(const std::string& localDb, std::int32_t custId);
    // Asks the server to drop the customer; the local row is left alone.
    std::int32_t SyncUploadDelCustomer(std::int32_t custId);

    const std::string& Code() const { return code_; }
    const std::string& CorpName0() const { return corpName0_; }
    const std::string& CorpKanaS() const { return corpKanaS_; }

private:
    bool ReadLocalCustomer(const std::string& localDb, std::int32_t custId);

    std::string code_, corpName0_, corpKanaS_;
};

}  // namespace morvane
