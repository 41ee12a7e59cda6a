// The machinery list of one data file of a settlement or permit record: a main row in
// t99_KIKAIICHIRAN_MAIN and machine rows in t99_KIKAIICHIRAN_SUB, sent up only.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

// The main fields, in the order of the body; each is a column and a POST key.
inline constexpr std::array<std::string_view, 25> kKikaiIchiranMainFields = {"vno",
                                                                             "CorpName0",
                                                                             "ApfName0",
                                                                             "Post0",
                                                                             "addr1",
                                                                             "ReviewDate",
                                                                             "MinCode",
                                                                             "PmtCheck0",
                                                                             "PmtCheck1",
                                                                             "PmtYear",
                                                                             "PmtNo",
                                                                             "PromiseDate",
                                                                             "ISO9001_Ninsho",
                                                                             "ISO9001_Office",
                                                                             "ISO9001_ConstOffice",
                                                                             "ISO9001_Gyoshu",
                                                                             "ISO9001_ValidStart",
                                                                             "ISO9001_ValidEnd",
                                                                             "ISO14001_Ninsho",
                                                                             "ISO14001_Office",
                                                                             "ISO14001_ConstOffice",
                                                                             "ISO14001_Gyoshu",
                                                                             "ISO14001_ValidStart",
                                                                             "ISO14001_ValidEnd",
                                                                             "SubmitDate"};

// The machine fields, in the order of the body; each is a column and a POST key.
inline constexpr std::array<std::string_view, 49> kKikaiIchiranSubFields = {"vno",
                                                                            "No",
                                                                            "MachineType",
                                                                            "MachineTypeStr",
                                                                            "Maker",
                                                                            "Model",
                                                                            "SerialNum",
                                                                            "ShoyuLease",
                                                                            "ShoyuLeaseStr",
                                                                            "GetDate",
                                                                            "LeaseStart",
                                                                            "LeaseEnd",
                                                                            "CheckDate",
                                                                            "JidoKoshin",
                                                                            "Attachment",
                                                                            "Weight",
                                                                            "Bucket",
                                                                            "ExpiryDate",
                                                                            "SelfCheck",
                                                                            "SelfCheckStr",
                                                                            "Biko",
                                                                            "JishuKensaKishu",
                                                                            "LeaseType",
                                                                            "Moushidesho",
                                                                            "ShubetsuKikaku",
                                                                            "Check",
                                                                            "TeitohoHani",
                                                                            "Abirity",
                                                                            "KikaiSonryoKubun",
                                                                            "SonryoCode1",
                                                                            "SonryoCode2",
                                                                            "SonryoCode3",
                                                                            "HaiGas",
                                                                            "MachineName",
                                                                            "SelfCheckNo",
                                                                            "CheckTarget",
                                                                            "OnRoad",
                                                                            "UserName",
                                                                            "CheckCorpName",
                                                                            "CheckRecord",
                                                                            "CheckPromise",
                                                                            "TakePicDate",
                                                                            "MachineNum",
                                                                            "CheckSubmitPic",
                                                                            "GetDateNoDayFlag",
                                                                            "LeaseStartNoDayFlag",
                                                                            "LeaseEndNoDayFlag",
                                                                            "CheckDateNoDayFlag",
                                                                            "ExpiryDateNoDayFlag"};

// The data file columns every row carries, read and never sent.
struct KikaiDataFile {
    std::string DataFileID, DataFileID_KY, DataFileIDStr, DataFileIDStr_KY;
};

// One machine row: its id and its fields in the order of kKikaiIchiranSubFields.
struct cP99KikaiIchiranSub {
    std::string id;
    std::array<std::string, kKikaiIchiranSubFields.size()> fields;
    KikaiDataFile dataFile;
    // The field of that name; empty for a name not in the list.
    std::string Field(std::string_view name) const;
};

class cP99KikaiIchiran {
public:
    std::int32_t CustomerID() const { return customerId_; }
    const std::string& RecordUpdate() const { return recordUpdate_; }
    // The main row's id, and its fields in the order of kKikaiIchiranMainFields.
    const std::string& MainItemID() const { return mainId_; }
    const std::array<std::string, kKikaiIchiranMainFields.size()>& MainFields() const {
        return main_;
    }
    const std::vector<cP99KikaiIchiranSub>& Subs() const { return subs_; }

    // Sends the list of the data file (DataID in DataFileID when bKessan, else in
    // DataFileID_KY): the main row, then each machine row, or DISABLEDALL alone when there
    // is none. 0 and nothing sent without a main row.
    std::int32_t SyncUpload(const std::string& LocalDB, std::int32_t CustID, double DataID,
                            bool bKessan);

    // " WHERE CustomerID = n AND DataFileID = d" (or DataFileID_KY for type 2); empty for
    // any other type.
    static std::string RowFilter(std::int32_t custId, std::int32_t dataFileType, double dataId);

private:
    // Loads the main row and the machine rows; false without a main row.
    bool ReadLocalDB(const std::string& LocalDB, std::int32_t CustID, double DataID,
                     std::int32_t dataFileType);

    std::int32_t customerId_ = 0;
    std::string recordUpdate_;
    std::string mainId_;
    std::array<std::string, kKikaiIchiranMainFields.size()> main_;
    KikaiDataFile mainDataFile_;
    std::vector<cP99KikaiIchiranSub> subs_;
};

}  // namespace morvane
