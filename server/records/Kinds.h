// The declarative table of every kind of data the server keeps: what is stored, and which pages
// read and write it in which XML layout.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace morvane::server {

enum class Scope {
    Customer,          // belongs to one customer
    Office,            // belongs to the account as a whole (masters)
    CustomerDataFile,  // belongs to one data file of a customer (DataFileType, DataFileID)
};

// What the server keeps for one kind: a record, or a list of items under an item ID.
struct StoreDecl {
    std::string name;
    Scope scope = Scope::Customer;
    bool list = false;
    // A list that holds at most one item: writing an item replaces the list.
    bool singleItem = false;
    // List tags come from the stem: <stem>List, <stem>Count, <stem>Item, <stem>ItemID.
    std::string stem;
    // Body key whose number orders the items ahead of their arrival order; may be empty.
    std::string orderKey;
    // Declared spelling is the XML tag; body keys match it without case.
    std::vector<std::string> fields;
    // Fields no reader compares: a write of these alone leaves the stamp, which would otherwise
    // make an unchanged record look changed on the server while the office changed it too.
    std::vector<std::string> quietFields;

    std::string ItemIdKey() const { return stem + "ItemID"; }
};

struct SectionDecl {
    enum class Type {
        Record,     // <element> with the record's fields
        List,       // <stem>List with count, items (and the stamp when the page says so)
        CountOnly,  // <stem>List with the count alone
    };
    Type type = Type::Record;
    std::string store;
    std::string element;              // Record only
    std::vector<std::string> fields;  // Record only: the subset sent, empty for all
};

struct GetPageDecl {
    std::string path;
    Scope scope = Scope::Customer;
    // The RecordUpdate sent is the latest write to any of these stores.
    std::vector<std::string> stampStores;
    // RecordUpdate directly under the payload element rather than inside the list.
    bool stampAtTop = false;
    std::vector<SectionDecl> sections;
};

struct SetTarget {
    std::string store;
    std::vector<std::string> fields;  // subset accepted, empty for all
};

struct SetPageDecl {
    std::string path;
    Scope scope = Scope::Customer;
    // Record pages may feed several records; list pages have exactly one list target.
    std::vector<SetTarget> targets;
};

class Catalogue {
public:
    Catalogue();
    const std::vector<StoreDecl>& Stores() const { return stores_; }
    const std::vector<GetPageDecl>& GetPages() const { return gets_; }
    const std::vector<SetPageDecl>& SetPages() const { return sets_; }
    const StoreDecl* Store(const std::string& name) const;
    const GetPageDecl* GetPage(const std::string& path) const;
    const SetPageDecl* SetPage(const std::string& path) const;
    // Per roster stamp index, the get page whose RecordUpdate it repeats ("" when none).
    const std::array<std::string, 53>& RosterPages() const { return roster_; }

private:
    std::vector<StoreDecl> stores_;
    std::vector<GetPageDecl> gets_;
    std::vector<SetPageDecl> sets_;
    std::array<std::string, 53> roster_;
};

// The one immutable catalogue.
const Catalogue& TheCatalogue();

}  // namespace morvane::server
