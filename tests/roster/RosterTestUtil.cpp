#include "RosterTestUtil.h"

#include "state/ProcessState.h"
#include "support/TestServer.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

std::string XmlText(std::string s) {
    return ReplaceAll(ReplaceAll(ReplaceAll(std::move(s), "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

}  // namespace

RosterEntry Customer(int id) {
    return {id, "C" + std::to_string(id), "社" + std::to_string(id), "ｼｬ", 1, {}};
}

std::vector<RosterEntry> Customers(const std::vector<int>& ids) {
    std::vector<RosterEntry> entries;
    for (int id : ids) entries.push_back(Customer(id));
    return entries;
}

std::string CompItem(const RosterEntry& e) {
    std::string s = "<compItem><CustomerID>" + std::to_string(e.id) +
                    "</CustomerID><disabled>0</disabled>" + "<Code>" + XmlText(e.code) +
                    "</Code><CorpName0>" + XmlText(e.name) + "</CorpName0><CorpKanaS>" +
                    XmlText(e.kana) + "</CorpKanaS><InetEnableFlag>" +
                    std::to_string(e.enableFlag) + "</InetEnableFlag>";
    for (int i = 0; i < kBackupTableCount; ++i) {
        const auto it = e.stamps.find(i);
        const std::string tag = "RecordUpdate" + std::to_string(i);
        s += "<" + tag + ">" + (it == e.stamps.end() ? "" : it->second) + "</" + tag + ">";
    }
    return s + "</compItem>";
}

std::string RosterReply(const std::vector<RosterEntry>& entries, const std::string& token) {
    std::string list = "<compList><CompCount>" + std::to_string(entries.size()) + "</CompCount>";
    for (const auto& e : entries) list += CompItem(e);
    return Envelope(1, token, list + "</compList>");
}

std::string TimeReply(const std::string& text) {
    return "<?xml version=\"1.0\"?><r><datetime>" + text + "</datetime></r>";
}

void RosterDbTest::SetUp() {
    MorvaneTest::SetUp();
    paths_ = CreateLocalDatabases(temp_.Path() / "data");
    server_->On("gettime.php", TimeReply(State().Clock().Now().StampText()));
}

void RosterDbTest::Serve(const std::vector<RosterEntry>& entries) {
    server_->On("customer/getCompList.php", RosterReply(entries));
}

std::vector<std::string> GridRows(const forms::Grid& grid) {
    std::vector<std::string> rows;
    for (int r = 0; r < grid.Rows(); ++r) {
        std::vector<std::string> cells{grid.At(r, 0).data};
        for (int c = 1; c < grid.Cols(); ++c) cells.push_back(grid.At(r, c).text);
        rows.push_back(Join(cells, " | "));
    }
    return rows;
}

std::vector<std::string> ListRows(const forms::ListView& list) {
    std::vector<std::string> rows;
    for (const auto& item : list.items) {
        std::vector<std::string> cells{item.key};
        cells.insert(cells.end(), item.texts.begin(), item.texts.end());
        rows.push_back(Join(cells, " | "));
    }
    return rows;
}

}  // namespace morvane::test
