// A component for the sync engine's tests, scripted by member name: every member exists,
// comparisons agree and everything else answers 1 unless the script says otherwise; every
// call is logged with its arguments.
#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "SyncRun.h"
#include "util/Value.h"

namespace morvane::cli {

class ScriptedComponent : public Component {
    using I32 = std::int32_t;
    using Str = const std::string&;
    template <class T>
    using PerCustomer = std::map<std::pair<std::string, int>, T>;  // (table, customer)

public:
    std::map<std::string, std::vector<int>, std::less<>> results;  // in turn; the last repeats
    std::map<std::string, SeenStamps, std::less<>> stamps;         // what comparisons see
    std::map<std::pair<int, int>, int> flags;                      // (customer, table)
    std::map<std::pair<int, int>, std::string> serverStamps, localStamps;  // the snapshot's
    std::vector<I32> local{1, 2};
    std::string add, del;  // the roster's lists of differing customers
    std::string inetDateServer;
    RosterChoice chosen{1, "", "3", "2", "9"};  // the reconciliation dialog's, but its answer
    int loginState = 1, loginStateAfterRefusal = 1;
    bool loginAsks = false;  // the login from the settings asks the server
    int answersLeft = -1;    // the server answers no request after these; -1: all
    // Requests the server refuses; members that send nothing and answer 0 (no local row).
    std::set<std::string, std::less<>> refused, sendNothing;
    PerCustomer<std::vector<std::string>> files;
    PerCustomer<std::vector<FormOwner>> forms;
    PerCustomer<int> liveRows;  // unscripted: 1
    std::map<I32, std::uint64_t> fingerprints;
    std::vector<std::string> calls;
    ExchangeCounts exchanges;

    I32 Run(const KindMember& m, const KindArgs& a) override {
        std::string args = a.db.empty() ? "" : " " + a.db;
        if (a.custId != 0) args += " " + std::to_string(a.custId);
        if (!a.file.empty()) args += " " + a.file;
        if (std::holds_alternative<FormCall>(m.call))
            args += " " + DoubleText(a.dataId) + (a.kessan ? " True" : " False");
        return Request(m.name, args);
    }
    I32 CompareCustomerList(Str db) override { return Request(__func__, Args(db)); }
    I32 SyncDownloadCustomerList(Str db) override { return Request(__func__, Args(db)); }
    I32 SyncUploadAddCustomer(Str db, I32 id) override { return Request(__func__, Args(db, id)); }
    I32 SyncUploadDelCustomer(I32 id) override { return Request(__func__, Args(id)); }
    bool RosterUploadIDs(Str, std::string& a, std::string& d, std::string& u) override {
        a = add;
        d = del;
        u.clear();
        return true;
    }
    RosterChoice ShowCompareCustListDlg() override {
        RosterChoice c = chosen;
        c.answer = Dialog(__func__, {});
        return c;
    }
    I32 CheckInetEnabledFlags(Str db) override { return Request(__func__, Args(db)); }
    I32 ShowSelectCustEnabledDlg(Str db, I32 type) override {
        return Dialog(__func__, Args(db, type));
    }
    I32 CheckExistCustID(I32 id) override { return Request(__func__, Args(id)); }
    I32 CustmerInetEnabledFlag(I32 id) override { return Request(__func__, Args(id)); }
    I32 CustmerBackupedTableSyncFlag(I32 id, I32 t) override {
        calls.push_back(__func__ + Args(id, t));
        return Find(flags, {id, t});
    }
    std::string CustmerRecordUpdateTable_Server(I32 id, I32 t) override {
        return Find(serverStamps, {id, t});
    }
    std::string CustmerRecordUpdateTable_Local(I32 id, I32 t) override {
        return Find(localStamps, {id, t});
    }
    std::string InetDateServer() override { return inetDateServer; }
    I32 LockCoustomer(I32 id) override { return Request(__func__, Args(id)); }
    I32 UnlockCoustomer(I32 id) override { return Request(__func__, Args(id)); }
    I32 LockMasterData(I32 id) override { return Request(__func__, Args(id)); }
    I32 UnlockMasterData(I32 id) override { return Request(__func__, Args(id)); }
    I32 ShowCompareMsg(Str title) override { return Dialog(__func__, Args(title)); }
    void setObjectUsage(I32 usage) override { calls.push_back(__func__ + Args(usage)); }

    int LoginFromSettings() override {
        if (!loginAsks) return loginState;
        ++exchanges.tried;
        return Answered() ? loginState : 0;
    }
    int LoginWithSavedPassword() override { return loginState; }  // no password saved
    int LoginState() const override { return loginState; }
    ExchangeCounts Exchanges() const override { return exchanges; }
    SeenStamps TakeComparedStamps() override { return std::exchange(pendingStamps_, {}); }
    std::vector<I32> LocalCustomerIDs(Str) override { return local; }
    std::vector<std::string> DataFiles(Str, Str table, I32 id) override {
        return Find(files, {table, id});
    }
    std::vector<FormOwner> FormOwners(Str, Str table, I32 id) override {
        return Find(forms, {table, id});
    }
    std::map<I32, std::uint64_t> LocalFingerprints(const std::vector<LocalTable>&,
                                                   const std::filesystem::path&) override {
        return fingerprints;
    }
    int LiveRows(const LocalTable& t, I32 id) override { return Find(liveRows, {t.table, id}, 1); }
    DateValue ServerNow() override { return DateValue(46000.0); }

    // Whether calls starting with these came, in this order (others between them).
    bool CalledInOrder(const std::vector<std::string>& prefixes) const {
        auto at = calls.begin();
        for (const std::string& prefix : prefixes) {
            at = std::find_if(at, calls.end(),
                              [&](const std::string& c) { return c.rfind(prefix, 0) == 0; });
            if (at == calls.end()) return false;
            ++at;
        }
        return true;
    }
    bool Called(const std::string& prefix) const { return CalledInOrder({prefix}); }

private:
    template <class Map>
    static typename Map::mapped_type Find(const Map& map, const typename Map::key_type& key,
                                          typename Map::mapped_type otherwise = {}) {
        const auto it = map.find(key);
        return it == map.end() ? otherwise : it->second;
    }
    template <class... A>
    static std::string Args(const A&... a) {
        std::ostringstream s;
        ((s << ' ' << a), ...);
        return s.str();
    }
    bool Answered() {
        if (answersLeft != 0) {
            if (answersLeft > 0) --answersLeft;
            return true;
        }
        ++exchanges.unanswered;
        ++exchanges.failed;
        return false;
    }
    int Next(std::string_view name) {
        const auto it = results.find(name);
        // Unscripted: comparisons agree, everything else succeeds.
        if (it == results.end() || it->second.empty()) return name.rfind("Compare", 0) == 0 ? 0 : 1;
        const int r = it->second.front();
        if (it->second.size() > 1) it->second.erase(it->second.begin());
        return r;
    }
    int Request(std::string_view name, const std::string& args) {
        calls.push_back(std::string(name) + args);
        if (sendNothing.count(name)) return 0;
        ++exchanges.tried;
        if (!Answered()) return 0;
        if (refused.count(name)) {
            ++exchanges.failed;
            loginState = loginStateAfterRefusal;
            return name.rfind("Compare", 0) == 0 ? 0 : 1;  // a refused move may still answer 1
        }
        if (auto st = stamps.find(name); st != stamps.end()) pendingStamps_ = st->second;
        return Next(name);
    }
    int Dialog(std::string_view name, const std::string& args) {
        calls.push_back(std::string(name) + args);
        return Next(name);
    }

    SeenStamps pendingStamps_;
};

}  // namespace morvane::cli
