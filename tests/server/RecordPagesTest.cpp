// The roster and the record and list pages of every kind, read the way the client reads them.
#include <optional>

#include "ServerFixture.h"
#include "server/records/Kinds.h"
#include "server/util/Text.h"
#include "support/Golden.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;
using Item = std::map<std::string, std::string>;
using morvane::test::Golden;

// Children of `node` by upper-cased tag name (the client matches tags without case).
Item ChildrenOf(pugi::xml_node node) {
    Item out;
    for (auto child : node.children()) out[ToUpperAscii(child.name())] = child.text().get();
    return out;
}

// A list as the client reads it: the payload element by exact name, items kept only when every
// required tag is there, and the list good only when the kept items number the count tag.
std::optional<std::vector<Item>> ReadList(const Reply& r, const char* root, const std::string& stem,
                                          const std::vector<std::string>& tags) {
    auto list = r.Payload(root).child((stem + "List").c_str());
    std::vector<Item> items;
    long count = -1;
    for (auto child : list.children()) {
        const std::string name = ToUpperAscii(child.name());
        if (name == ToUpperAscii(stem + "Count")) count = std::stol(child.text().get());
        if (name != ToUpperAscii(stem + "Item")) continue;
        Item item = ChildrenOf(child);
        bool complete = item.count(ToUpperAscii(stem + "ItemID")) > 0;
        for (const auto& tag : tags) complete = complete && item.count(ToUpperAscii(tag)) > 0;
        if (complete) items.push_back(std::move(item));
    }
    if (!list || count != static_cast<long>(items.size())) return std::nullopt;
    return items;
}

class RecordPagesTest : public ServerTest {
protected:
    void SetUp() override {
        ServerTest::SetUp();
        u_ = LogIn();
    }
    // Posts the rows of a block, each checked against its flags.
    void PostAll(const std::string& key) {
        for (const auto& row : data_.Table(key))
            EXPECT_EQ(Flags(u_, row[0], row[1]), std::stoi(row[2])) << row[0] << " " << row[1];
    }
    std::string Stamp(const std::string& path, int customer) {
        return Call(u_, path, Id(customer)).At("Customer/RecordUpdate");
    }
    static std::string Id(int customer) { return "CustomerID=" + std::to_string(customer) + "&"; }
    Golden data_{"server/record-pages.txt"};
    Login u_;
};

// The account may back up 3: the fourth customer is not enabled, and enabling it waits for
// another to be taken out.
TEST_F(RecordPagesTest, RosterListsCustomersAscendingWithinTheAccountsLimit) {
    for (int id : {30, 4, 17, 31}) CreateCustomer(u_, id, "C" + std::to_string(id));
    Reply r = Call(u_, "customer/getCompList.php", "");
    EXPECT_EQ(r.At("compList/CompCount"), "4");
    std::vector<std::string> roster;
    for (auto item : r.Payload("compList").children("compItem"))
        roster.push_back(std::string(item.child("CustomerID").text().get()) + "|" +
                         item.child("Code").text().get() + "|" +
                         item.child("InetEnableFlag").text().get());
    EXPECT_EQ(roster, data_.Lines("roster"));
    EXPECT_EQ(r.At("compList/compItem/CorpName0"), "名前");
    PostAll("enable flags");
}

// The code travels with the roster and the agency year only upward: a moved stamp here would
// show the local record as changed on both sides. An add of a customer already there carries
// the short kana under the kana name's key: that is no change either.
TEST_F(RecordPagesTest, CodeOrAgencyYearAloneOrAnAddOfAKnownCustomerLeaveTheStamp) {
    CreateCustomer(u_, 9);
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php",
                    "CustomerID=9&CorpName0=旧&MinName=M&CorpKana0=カブシキガイシャ&"),
              1);
    const std::string kihon = Stamp("customer/getCompKihon.php", 9);
    const std::string gyoshu = Stamp("customer/getCompGyoshu.php", 9);
    ASSERT_FALSE(kihon.empty());
    clock_->Advance(2min);
    PostAll("no change of stamp");
    EXPECT_EQ(Stamp("customer/getCompKihon.php", 9), kihon);
    EXPECT_EQ(Stamp("customer/getCompGyoshu.php", 9), gyoshu);
    Item after = ChildrenOf(
        Call(u_, "customer/getCompKihon.php", Id(9)).Payload("Customer").child("CompKihon"));
    // A partial update changes only what it carries.
    EXPECT_EQ(after["CORPKANA0"] + after["CORPNAME0"] + after["CORPKANAS"] + after["CODE"] +
                  after["MINNAME"],
              "カブシキガイシャエーエーC9M");
    EXPECT_EQ(Call(u_, "customer/getCompList.php", "").At("compList/compItem/RecordUpdate0"),
              kihon);
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php", "CustomerID=9&Code=N2&CorpName0=新&"), 1);
    EXPECT_GT(Stamp("customer/getCompKihon.php", 9), kihon) << "a compared field moves it";
}

// A form whose main row is gone locally: the main post carries an empty item ID, and the
// server holds what the office holds, no main row. Other lists still need an item ID.
TEST_F(RecordPagesTest, DelegationFormWithoutAMainRowIsAcceptedAndReadsAsEmpty) {
    CreateCustomer(u_, 11);
    PostAll("delegation");
    const Reply r = Call(u_, "prefcust/99/getIninMain.php", Id(11));
    const auto mainList = ReadList(r, "Customer", "IninMain", {});
    ASSERT_TRUE(mainList) << r.text;
    EXPECT_TRUE(mainList->empty());
    const auto subs = ReadList(Call(u_, "prefcust/99/getIninSub.php", Id(11)), "Customer",
                               "IninSub", {"vno", "IninTitle"});
    EXPECT_EQ(subs ? subs->size() : 0u, 1u);
}

// The details page's combined stamp is the linkage tests' (a changed office must show); the
// staff list's own stamp would override the record's.
TEST_F(RecordPagesTest, MainPageAddsTheStaffCountWithoutItsStamp) {
    CreateCustomer(u_, 2);
    PostAll("staff");
    Reply main = Call(u_, "customer/getCompKihonMain.php", Id(2));
    EXPECT_EQ(main.At("Customer/ShokuinList/ShokuinCount"), "2");
    EXPECT_FALSE(main.Payload("Customer").child("ShokuinList").child("RecordUpdate"));
}

TEST_F(RecordPagesTest, EveryDeclaredListKindRoundTripsItsItemsAndDisabledAllReplacesTheList) {
    CreateCustomer(u_, 6);
    const auto& cat = TheCatalogue();
    for (const auto& page : cat.SetPages()) {
        const auto& store = *cat.Store(page.targets.front().store);
        if (!store.list) continue;
        std::string getPath = page.path;
        getPath.replace(getPath.find("/set"), 4, "/get");
        SCOPED_TRACE(getPath);
        const bool office = page.scope == Scope::Office;
        const char* root = office ? "Master" : "Customer";
        std::string start = office ? "" : Id(6);
        if (page.scope == Scope::CustomerDataFile) start += "DataFileID=12.5&DataFileType=1&";
        const int items = store.singleItem ? 1 : 2;
        const auto value = [](const std::string& f, int n, const std::string& round = "") {
            const bool number = f == "vno" || f == "LocalIndex";
            return number ? std::to_string(n) : f + "<&>" + std::to_string(n) + round;
        };
        // A first round, under other item IDs, that the second replaces whole.
        for (const std::string round : {"old", ""})
            for (int n = 1; n <= items; ++n) {
                std::string body = start + store.ItemIdKey() + "=" +
                                   std::to_string((round.empty() ? 100 : 200) + n) + "&";
                if (n == 1) body += "DISABLEDALL=DISABLEDALL&";
                for (const auto& f : store.fields) body += f + "=" + value(f, n, round) + "&";
                ASSERT_EQ(Flags(u_, page.path, body), 1);
            }
        Reply got = Call(u_, getPath, start);
        auto list = ReadList(got, root, store.stem, store.fields);
        ASSERT_TRUE(list) << got.text;
        ASSERT_EQ(list->size(), static_cast<std::size_t>(items));
        EXPECT_NE(got.At(std::string(root) + "/" + store.stem + "List/RecordUpdate"), "");
        for (int n = 1; n <= items; ++n) {
            auto& item = (*list)[static_cast<std::size_t>(n - 1)];
            EXPECT_EQ(item[ToUpperAscii(store.ItemIdKey())], std::to_string(100 + n));
            for (const auto& f : store.fields) EXPECT_EQ(item[ToUpperAscii(f)], value(f, n));
        }
        EXPECT_EQ(office, !got.Payload("Customer"));
        EXPECT_EQ(office, got.At(std::string(root) + "/CustomerID").empty());
    }
}

// The header moved with the main record, whose own stamp tells the offices; a grid that
// looked newer here would be taken over an office's unsent grid.
TEST_F(RecordPagesTest, GyoshuGridKeepsItsOwnStampWhenTheHeaderMoves) {
    CreateCustomer(u_, 4);
    ASSERT_EQ(Flags(u_, "customer/setCompGyoshu.php", "CustomerID=4&MinName=M&EPmtCheck31=1&"), 1);
    const std::string before = Stamp("customer/getCompGyoshu.php", 4);
    clock_->Advance(1min);
    Call(u_, "customer/setCompKihon.php", "CustomerID=4&MinName=M2&");
    EXPECT_EQ(Stamp("customer/getCompGyoshu.php", 4), before);
    CreateCustomer(u_, 5);
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php", "CustomerID=5&MinName=M&"), 1);
    EXPECT_EQ(Stamp("customer/getCompGyoshu.php", 5), "") << "a grid never written";
}

// Deleting a customer that is gone, or never was, is done, not a failure; a new customer under
// an old number starts empty.
TEST_F(RecordPagesTest, DeletedCustomerLeavesTheRosterWithItsData) {
    CreateCustomer(u_, 1);
    PostAll("deleted customer");
    EXPECT_EQ(Call(u_, "customer/getCompList.php", "").At("compList/CompCount"), "0");
    CreateCustomer(u_, 1);
    auto memos = ReadList(Call(u_, "customer/getMemo.php", Id(1)), "Customer", "Memo", {});
    ASSERT_TRUE(memos);
    EXPECT_TRUE(memos->empty());
}

}  // namespace
}  // namespace morvane::server::testing
