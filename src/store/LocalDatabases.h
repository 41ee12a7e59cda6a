// Builds the host's three local databases in a folder, empty or with generated sample data:
// what the command line's init-db, the demo, the tests and the benchmarks start from.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace morvane {

// The name the host's fresh database gives its sample customer; a roster of this customer
// alone counts as empty.
inline constexpr const char* kSampleCustomerName = "（サンプル）トルマー建設株式会社";

inline constexpr const char* kCustomerDatabaseName = "Customer.dat";
inline constexpr const char* kMasterDatabaseName = "Master.dat";
inline constexpr const char* kPrefCustomDatabaseName = "prefcustom.dat";

struct LocalDatabasePaths {
    std::filesystem::path customer;    // the LocalDB of the customer calls
    std::filesystem::path master;      // the LocalDB of the master calls
    std::filesystem::path prefcustom;  // the prefecture forms, beside the customer database
};

struct SampleDataOptions {
    // Customers 1..customers, each with rows in every table that belongs to a customer.
    std::int32_t customers = 0;
    // Rows per customer in each such table (tCustomer has one).
    std::int32_t rowsPerTable = 2;
    // Adds the host's sample customer, numbered customers + 1.
    bool hostSampleCustomer = false;
    // Rows of each master in Master.dat.
    std::int32_t masterRows = 3;
    // No InetCheckDate anywhere, as in an office that has never been backed up; otherwise
    // some rows look agreed on earlier.
    bool neverSynced = false;
    // Every customer's trade grid whole, 31 live rows coded 1 to 31, as the host keeps it;
    // otherwise the grid has rowsPerTable rows like any other table.
    bool tradeGrid = false;
    // Every live settlement, permit and other record names a small data file, written beside
    // the databases under files/<customer>/, but for one record in 17, whose file is missing.
    bool dataFiles = false;
};

// Creates the three files in the folder (made if missing; existing files are an error).
// Sample rows carry stamps from 2024 on, some rows are deleted (disabled = 1), some have no
// RecordUpdate or no InetCheckDate, some bidding rows are blank and some permit rows hidden.
// Raises a RuntimeError on failure and leaves no half-built file behind.
LocalDatabasePaths CreateLocalDatabases(const std::filesystem::path& folder,
                                        const SampleDataOptions& options = {});

// The tables of each file, in the order the schema creates them.
std::string CustomerSchemaSql();
std::string MasterSchemaSql();
std::string PrefCustomSchemaSql();

}  // namespace morvane
