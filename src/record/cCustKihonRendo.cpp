// The linkage calls on cCustKihon: main record, trades, staff and offices compared from one
// reply and then moved kind by kind through the kinds' own methods; and the code-only upload.
#include <exception>

#include "platform/Xml.h"
#include "record/cCustKihon.h"
#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "store/mdlMorvaneCommon.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/DateValue.h"
#include "util/Text.h"

namespace morvane {
namespace {

using Step = std::int32_t (cCustKihon::*)(const std::string&, std::int32_t);

// The four kinds in flag order.
constexpr std::array<Step, 4> kDownloads{
    &cCustKihon::SyncDownloadNormal, &cCustKihon::SyncDownloadGyosyu,
    &cCustKihon::SyncDownloadShokuin, &cCustKihon::SyncDownloadEigyosho};
constexpr std::array<Step, 4> kUploads{&cCustKihon::SyncUploadNormal, &cCustKihon::SyncUploadGyoshu,
                                       &cCustKihon::SyncUploadShokuin,
                                       &cCustKihon::SyncUploadEigyosho};

// The reply's last RecordUpdate in document order, beside the sections or inside a list;
// empty unless it is a date.
std::string LastStamp(const platform::XmlDocument& doc) {
    std::string stamp;
    const platform::XmlNode root = doc.DocumentElement();
    if (!root) return stamp;
    const auto customers = root.SelectNodes("Customer");
    if (customers.empty()) return stamp;
    auto take = [&stamp](const platform::XmlNode& node) {
        const std::string text = node.Text();
        stamp = IsDateText(text) ? text : std::string();
    };
    for (auto child = customers[0].FirstChildElement(); child; child = child.NextSiblingElement()) {
        const std::string name = ToUpperAscii(child.NameView());
        if (name == "RECORDUPDATE") {
            take(child);
        } else if (name.ends_with("LIST")) {
            for (auto c = child.FirstChildElement(); c; c = c.NextSiblingElement())
                if (ToUpperAscii(c.NameView()) == "RECORDUPDATE") take(c);
        }
    }
    return stamp;
}

}  // namespace

std::int32_t FoldRendoResults(const RendoResults& results, RendoFlags& flags) {
    bool any = false;
    bool localNewer = false;
    for (size_t k = 0; k < results.size(); ++k) {
        flags[k] = results[k] != 0;
        any = any || flags[k];
        localNewer = localNewer || results[k] == 2;
    }
    if (!any) return 0;
    return localNewer ? 2 : 1;
}

bool cCustKihon::ReadXMLRendoInfo(std::string_view xml) {
    ClearData();
    const auto doc = platform::XmlDocument::Load(xml);
    return doc && ReadXMLRendoInfo(*doc);
}

bool cCustKihon::ReadXMLRendoInfo(const platform::XmlDocument& doc) {
    // The record's reader clears the object; the lists are read after it.
    const bool record = ReadXMLSection(doc, Section::RendoInfo);
    const bool staff = shokuin_.ReadXML(doc);
    const bool offices = eigyosho_.ReadXML(doc);
    shokuinCount_ = shokuin_.Count();
    // All four kinds are compared under the one stamp the reply ends with.
    recordUpdate_ = LastStamp(doc);
    shokuin_.Restamp(recordUpdate_);
    eigyosho_.Restamp(recordUpdate_);
    return record && staff && offices;
}

std::int32_t cCustKihon::CompareLocalDBRendoInfo(const std::string& LocalDB, std::int32_t CustID) {
    try {
        // Each comparison stamps its own table when only the stamps differ.
        const RendoResults results{
            CompareLocalDBNormal(LocalDB, CustID), CompareLocalDBGyosyu(LocalDB, CustID),
            CompareLocalDBShokuin(LocalDB, CustID), CompareLocalDBEigyosho(LocalDB, CustID)};
        return FoldRendoResults(results, rendoDifferFlags_);
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        return 0;
    }
}

std::int32_t cCustKihon::SyncDownloadRendoInfo(const std::string& LocalDB, std::int32_t CustID) {
    for (size_t k = 0; k < kDownloads.size(); ++k)
        if (rendoDifferFlags_[k] && (this->*kDownloads[k])(LocalDB, CustID) != 1) return 0;
    return 1;
}

std::int32_t cCustKihon::SyncUploadRendoInfo(const std::string& LocalDB, std::int32_t CustID) {
    // The kinds already sent stay sent when a later one fails.
    for (Step upload : kUploads)
        if ((this->*upload)(LocalDB, CustID) != 1) return 0;
    return GetLoginState() == 1 ? 1 : 0;
}

std::int32_t cCustKihon::SyncUploadCustCode(const std::string& LocalDB, std::int32_t CustID) {
    if (!ReadLocalNormal(LocalDB, CustID) || record_.Code.empty()) return 0;
    std::string body = UpperCustomerBody(CustID);
    AppendField(body, "Code", record_.Code);
    // The code alone does not settle the record, so nothing is stamped.
    const std::string reply = SendRequestProgress(page::kSetCompKihon, body, "", nullptr);
    return !reply.empty() && GetLoginState() == 1 ? 1 : 0;
}

}  // namespace morvane
