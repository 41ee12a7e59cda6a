// The delegation form of the customer's prefecture database: one main row in t99_ININ_MAIN,
// updated in place, and its sub rows in t99_ININ_SUB, replaced whole. Every live row of the
// two tables counts as the one form, whoever the customer.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lists/ListDecl.h"

namespace morvane {

// The main record's fields, as texts.
struct cP99IninMain : record::ListItem {
    std::string vno, MakeDate, SubShokuin, SelectDetail, SelectSubShokuin, PrintDate,
        PrintSubShokuin;
    // Read from a row, never sent.
    std::string DataFileID, DataFileID_KY, DataFileIDStr, DataFileIDStr_KY;
};

// One sub record of the form: a title and four detail texts.
struct cP99IninSub : record::ListItem {
    std::string vno, IninTitle;
    std::array<std::string, 4> IninDetail;
    // Read from a row, never sent.
    std::string DataFileID, DataFileID_KY, DataFileIDStr, DataFileIDStr_KY;
};

class cP99Inin {
public:
    static const record::ListDecl<cP99IninMain>& MainDeclaration();
    static const record::ListDecl<cP99IninSub>& SubDeclaration();

    std::int32_t CustomerID() const { return customerId_; }
    // The stamp of the last reply read; empty unless it was a date.
    const std::string& RecordUpdate() const { return recordUpdate_; }
    // The main record's item number: empty without a main record.
    const std::string& IninMainItemID() const { return mainId_; }
    const cP99IninMain& Main() const { return main_; }
    std::int32_t SubCount() const { return subCount_; }
    const std::vector<cP99IninSub>& Subs() const { return subs_; }

    // Clears the object, then reads the main reply and the sub reply: false unless the main
    // list and the sub list are both whole.
    bool ReadXML(std::string_view XMLMain, std::string_view XMLSub);
    // 0 when the form agrees with the live rows (stamping them), else the decision code.
    std::int32_t CompareLocalDB(const std::string& LocalDB, std::int32_t CustID, double DataID,
                                bool bKessan);
    // Rewrites the newest live main row (or adds one), then replaces every sub row; 1.
    std::int32_t SyncDownload(const std::string& LocalDB, std::int32_t CustID, double DataID,
                              bool bKessan);
    // Sends the main row, then the sub rows; 0 and nothing sent without a live sub row.
    std::int32_t SyncUpload(const std::string& LocalDB, std::int32_t CustID, double DataID,
                            bool bKessan);

private:
    void Clear();
    // Loads the oldest live main row and every live sub row; false without a sub row.
    bool ReadLocalDB(const std::string& LocalDB, std::int32_t CustID, double DataID, bool bKessan);

    std::int32_t customerId_ = 0;
    std::string recordUpdate_;
    std::string mainId_;
    cP99IninMain main_;
    std::int32_t subCount_ = 0;
    std::vector<cP99IninSub> subs_;
};

}  // namespace morvane
