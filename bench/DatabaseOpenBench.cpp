// Times what opening the customer database costs a walk over an office of 1,000 customers:
// for each customer, the newest RecordUpdate and InetCheckDate of its ten kinds in the
// customer database, read as the comparison members read them (one open each), once with
// every open opening the file and once with connections kept. Medians of the runs.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/Dao.h"
#include "state/ProcessState.h"
#include "store/BackupTableIndex.h"
#include "store/LocalDatabases.h"
#include "store/mdlMorvaneCommon.h"
#include "support/TempDir.h"

namespace morvane {
namespace {

using Clock = std::chrono::steady_clock;

double Median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

struct Walk {
    double seconds = 0;
    double opensPerCustomer = 0;
    long long found = 0;  // stamps read, so that both walks are seen to do the same work
};

Walk WalkCustomers(const std::string& customerDb, int customers, size_t capacity) {
    dao::ConnectionPool& pool = State().DatabasePool();
    pool.Clear();
    pool.SetCapacity(capacity);
    Walk walk;
    const auto start = Clock::now();
    for (int id = 1; id <= customers; ++id) {
        for (int index = 0; index < kBackupTableCount; ++index) {
            if (BackupTables()[index].inPrefCustom) continue;
            const std::string key = index == kIndexCustomer ? "id" : "CustomerID";
            const std::string cond = key + " = " + std::to_string(id) + " AND disabled = 0";
            const char* table = BackupTables()[index].name;
            walk.found += !GetRecordUpdateLocal(customerDb, table, cond).IsEmpty();
            walk.found += !GetInetCheckDateLocal(customerDb, table, cond).IsEmpty();
        }
    }
    walk.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const auto tally = pool.Tally();
    walk.opensPerCustomer = static_cast<double>(tally.opened) / customers;
    return walk;
}

}  // namespace
}  // namespace morvane

int main(int argc, char** argv) {
    using namespace morvane;
    const int customers = argc > 1 ? std::atoi(argv[1]) : 1000;
    const int runs = std::max(1, argc > 2 ? std::atoi(argv[2]) : 5);

    test::TempDir temp;
    State().Reset();
    SampleDataOptions options;
    options.customers = customers;
    const std::string customerDb =
        CreateLocalDatabases(temp.Path() / "data", options).customer.string();

    std::vector<double> fresh, kept;
    Walk before, after;
    for (int run = 0; run < runs; ++run) {
        before = WalkCustomers(customerDb, customers, 0);
        fresh.push_back(before.seconds);
        after = WalkCustomers(customerDb, customers, dao::ConnectionPool::kDefaultCapacity);
        kept.push_back(after.seconds);
    }
    if (before.found != after.found) std::fprintf(stderr, "the two walks read different stamps\n");
    std::printf("stamp reads of %d customers x 10 kinds, median of %d runs (%lld stamps)\n",
                customers, runs, after.found);
    std::printf("  every open opens the file   %8.3f s  %7.3f opens a customer\n", Median(fresh),
                before.opensPerCustomer);
    std::printf("  connections kept            %8.3f s  %7.3f opens a customer\n", Median(kept),
                after.opensPerCustomer);
    std::printf("  ratio                       %8.2f\n", Median(fresh) / Median(kept));
    return 0;
}
