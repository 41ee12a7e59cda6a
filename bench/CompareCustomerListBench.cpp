// Times the roster comparison end to end for an office of 10,000 customers (about a million
// rows in the 53 tables, the roster served over HTTPS) against its floor: the 53 aggregate
// statements on databases already open and the parse of the roster, each alone. Every
// figure is the median of the runs, all in one process. Also times the snapshot members.
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "component/ctrlMorvane.h"
#include "platform/Dao.h"
#include "roster/cCustList.h"
#include "roster/cCustListSync.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "store/BackupTableIndex.h"
#include "store/LocalDatabases.h"
#include "support/MorvaneTest.h"
#include "support/ScriptedToolkit.h"
#include "support/TempDir.h"
#include "support/TestServer.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"

namespace morvane {
namespace {

using Clock = std::chrono::steady_clock;

class FixedClock final : public platform::Clock {
public:
    explicit FixedClock(DateValue at) : at_(at) {}
    DateValue Now() const override { return at_; }

private:
    DateValue at_;
};

double Since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double Median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

// Closes the connections of the floor.
struct OpenDatabases {
    sqlite3* customer = nullptr;
    sqlite3* pref = nullptr;
    explicit OpenDatabases(const LocalDatabasePaths& paths) {
        sqlite3_open_v2(paths.customer.c_str(), &customer,
                        SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
        sqlite3_open_v2(paths.prefcustom.c_str(), &pref, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX,
                        nullptr);
    }
    ~OpenDatabases() {
        sqlite3_close(customer);
        sqlite3_close(pref);
    }
    OpenDatabases(const OpenDatabases&) = delete;
    OpenDatabases& operator=(const OpenDatabases&) = delete;
};

// Server stamps near the local ones, so that every decision occurs.
std::string RosterXml(int customers) {
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><r><system><flags>1</flags>"
        "<token>T2</token></system><compList><CompCount>" +
        std::to_string(customers) + "</CompCount>";
    xml.reserve(static_cast<size_t>(customers) * 2600);
    char stamp[32];
    for (int id = 1; id <= customers; ++id) {
        xml += "<compItem><CustomerID>" + std::to_string(id) + "</CustomerID><Code>C" +
               std::to_string(id) + "</Code><CorpName0>モルヴェイン建設" + std::to_string(id) +
               "株式会社</CorpName0><CorpKanaS>ｶﾅ</CorpKanaS><InetEnableFlag>1</InetEnableFlag>";
        for (int i = 0; i < kBackupTableCount; ++i) {
            const int minutes = (id * 7 + i * 13) % 600000;
            std::snprintf(stamp, sizeof stamp, "2024/%02d/%02d %02d:%02d:00",
                          1 + minutes / 43200 % 12, 1 + minutes / 1440 % 28, minutes / 60 % 24,
                          minutes % 60);
            const std::string tag = "RecordUpdate" + std::to_string(i);
            xml += "<" + tag + ">" + ((id + i) % 5 == 0 ? "" : stamp) + "</" + tag + ">";
        }
        xml += "</compItem>";
    }
    return xml + "</compList></r>";
}

// The 53 statements alone, on databases already open as the comparison finds them kept:
// prepared and stepped through every row, each column read.
double AggregateFloor(const OpenDatabases& open) {
    sqlite3* customer = open.customer;
    sqlite3* pref = open.pref;
    const auto start = Clock::now();
    size_t rows = 0, bytes = 0;
    for (int i = 0; i < kBackupTableCount; ++i) {
        const std::string sql = dao::TranslateJetSql(BackupTableStatement(i, 0));
        sqlite3_stmt* st = nullptr;
        sqlite3_prepare_v2(BackupTables()[i].inPrefCustom ? pref : customer, sql.c_str(), -1, &st,
                           nullptr);
        while (sqlite3_step(st) == SQLITE_ROW) {
            ++rows;
            bytes += static_cast<size_t>(sqlite3_column_int(st, 0));
            for (int c = 1; c < 3; ++c) {
                sqlite3_column_text(st, c);
                bytes += static_cast<size_t>(sqlite3_column_bytes(st, c));
            }
        }
        sqlite3_finalize(st);
    }
    const double seconds = Since(start);
    if (rows == 0 || bytes == 0) std::fprintf(stderr, "no rows?\n");
    return seconds;
}

double ParseFloor(const std::string& xml) {
    const auto start = Clock::now();
    pugi::xml_document doc;
    const auto result = doc.load_buffer(xml.data(), xml.size());
    const double seconds = Since(start);
    if (!result) std::fprintf(stderr, "parse failed\n");
    return seconds;
}

}  // namespace
}  // namespace morvane

int main(int argc, char** argv) {
    using namespace morvane;
    const int customers = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int runs = std::max(1, argc > 2 ? std::atoi(argv[2]) : 5);

    test::TempDir temp;
    ProcessState& state = State();
    state.Reset();
    state.SetSettingsRoot(temp.Path() / "config");
    auto kit = std::make_shared<test::ScriptedToolkit>();
    state.SetToolkit(kit);
    test::TestServer server;
    platform::HttpOptions http;
    http.caFile = server.CaFile();
    http.connectTimeoutSeconds = 10;
    http.stallTimeoutSeconds = 30;
    state.SetHttpOptions(http);
    WriteMorvaneSetting(reg::kServerName, server.HostName());
    WriteMorvaneSetting(reg::kContractNo, "C-1001");

    auto start = Clock::now();
    SampleDataOptions options;
    options.customers = customers;
    const auto paths = CreateLocalDatabases(temp.Path() / "data", options);
    std::printf("built %d customers with %d rows a table in %.2f s\n", customers,
                options.rowsPerTable, Since(start));
    const std::string xml = RosterXml(customers);
    std::printf("roster reply: %.1f MB\n", xml.size() / 1e6);
    server.On("customer/getCompList.php", xml);
    // One fixed instant on both sides, so that the measured server offset, and with it every
    // decision near the ten-second margin, is the same in every run.
    const DateValue now = state.Clock().Now();
    state.SetClock(std::make_shared<FixedClock>(now));
    server.On("gettime.php", "<r><datetime>" + now.StampText() + "</datetime></r>");
    server.On("login.php", test::LoginReply(1, "T1"));

    ctrlMorvane obj;
    if (!DoLogin("user1", "pass1", "C-1001")) {
        std::fprintf(stderr, "login failed\n");
        return 1;
    }

    const OpenDatabases open(paths);
    std::vector<double> total, sql, parse, snapshot;
    std::int32_t result = -1;
    long long checksum = 0;
    for (int run = 0; run < runs; ++run) {
        sql.push_back(AggregateFloor(open));
        parse.push_back(ParseFloor(xml));
        start = Clock::now();
        result = obj.CompareCustomerList(paths.customer.string());
        total.push_back(Since(start));
        start = Clock::now();
        for (int id = 1; id <= customers; ++id)
            for (int i = 0; i < kBackupTableCount; ++i)
                checksum += obj.CustmerBackupedTableSyncFlag(id, i) +
                            (obj.CustmerBackupedTable(id, i) ? 1 : 0);
        snapshot.push_back(Since(start));
    }
    // Where the time goes: the exchange, the parse into the roster, the table scan.
    std::vector<double> fetch, read, scan;
    for (int run = 0; run < runs; ++run) {
        start = Clock::now();
        const std::string reply = SendRequest(page::kGetCompList, UpperBody());
        fetch.push_back(Since(start));
        cCustList list;
        start = Clock::now();
        list.ReadXML(reply);
        read.push_back(Since(start));
        cCustListSync sync;
        for (const auto& item : list) sync.Add(item->Key, item->id);
        start = Clock::now();
        list.CompareLocalDBTable(paths.customer.string(), paths.prefcustom.string(), sync, 0);
        scan.push_back(Since(start));
    }
    std::printf("  parts: exchange %.3f s, roster read %.3f s, table scan %.3f s\n", Median(fetch),
                Median(read), Median(scan));
    if (!kit->Boxes().empty()) std::printf("boxes: %s\n", kit->Boxes()[0].text.c_str());
    const double end = Median(total);
    const double floor = Median(sql) + Median(parse);
    std::printf("CompareCustomerList result %d (checksum %lld), median of %d runs\n", result,
                checksum, runs);
    std::printf("  end to end                 %8.3f s\n", end);
    std::printf("  floor: 53 statements       %8.3f s\n", Median(sql));
    std::printf("  floor: roster parse        %8.3f s\n", Median(parse));
    std::printf("  ratio end to end / floor   %8.2f  (goal <= 1.5)\n", end / floor);
    std::printf("  snapshot: %d x 53 x 2 calls %8.3f s (goal < 1 s)\n", customers,
                Median(snapshot));
    return 0;
}
