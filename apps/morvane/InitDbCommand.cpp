#include "InitDbCommand.h"

#include <exception>
#include <ostream>

#include "store/LocalDatabases.h"

namespace morvane::cli {

int RunInitDb(const std::filesystem::path& dir, std::int32_t sample, std::ostream& out,
              std::ostream& err) {
    if (sample < 0) {
        err << "morvane: --sample takes a count of 0 or more\n";
        return 2;
    }
    SampleDataOptions options;
    options.customers = sample;
    options.hostSampleCustomer = sample == 0;
    // A new office's data: nothing of it has ever been agreed with a server.
    options.neverSynced = true;
    options.tradeGrid = true;
    options.dataFiles = true;
    try {
        const LocalDatabasePaths paths = CreateLocalDatabases(dir, options);
        out << "customer database: " << paths.customer.string() << '\n'
            << "masters:           " << paths.master.string() << '\n'
            << "prefecture forms:  " << paths.prefcustom.string() << '\n'
            << "customers:         "
            << (sample == 0 ? std::string("the host's sample customer only")
                            : std::to_string(sample) + " generated")
            << '\n';
        return 0;
    } catch (const std::exception& e) {
        err << "morvane: init-db: " << e.what() << '\n';
        return 1;
    }
}

}  // namespace morvane::cli
