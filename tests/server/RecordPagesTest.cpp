// The roster and the record and list pages of every kind, read the way the client reads them.
#include <optional>

#include "ServerFixture.h"
#include "server/records/Kinds.h"
#include "server/util/Text.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;
using Item = std::map<std::string, std::string>;

std::string Upper(std::string_view s) { return ToUpperAscii(s); }

// Children of `node` by upper-cased tag name (the client matches tags without case).
Item ChildrenOf(pugi::xml_node node) {
    Item out;
    for (auto child : node.children()) out[Upper(child.name())] = child.text().get();
    return out;
}

// A list as the client reads it: the payload element by exact name, items kept only when every
// required tag is there, and the list good only when the kept items number the count tag.
std::optional<std::vector<Item>> ReadList(const Reply& r, const char* root, const std::string& stem,
                                          const std::vector<std::string>& tags) {
    auto list = r.Payload(root).child((stem + "List").c_str());
    if (!list) return std::nullopt;
    std::vector<Item> items;
    long count = -1;
    for (auto child : list.children()) {
        if (Upper(child.name()) == Upper(stem + "Count")) count = std::stol(child.text().get());
        if (Upper(child.name()) != Upper(stem + "Item")) continue;
        Item item = ChildrenOf(child);
        bool complete = item.count(Upper(stem + "ItemID")) > 0;
        for (const auto& tag : tags) complete = complete && item.count(Upper(tag)) > 0;
        if (complete) items.push_back(std::move(item));
    }
    if (count != static_cast<long>(items.size())) return std::nullopt;
    return items;
}

class RecordPagesTest : public ServerTest {
protected:
    void SetUp() override {
        ServerTest::SetUp();
        u_ = LogIn();
    }
    Item Kihon(int customer) {
        return ChildrenOf(Call(u_, "customer/getCompKihon.php", Id(customer))
                              .Payload("Customer")
                              .child("CompKihon"));
    }
    std::string Stamp(const std::string& path, int customer) {
        return Call(u_, path, Id(customer)).At("Customer/RecordUpdate");
    }
    static std::string Id(int customer) { return "CustomerID=" + std::to_string(customer) + "&"; }
    Login u_;
};

// Stamps empty at creation: the end-to-end roster test (new customers carry no stamps).
TEST_F(RecordPagesTest, RosterListsCustomersAscending) {
    for (int id : {30, 4, 17}) CreateCustomer(u_, id, "C" + std::to_string(id));
    Reply r = Call(u_, "customer/getCompList.php", "");
    EXPECT_EQ(r.At("compList/CompCount"), "3");
    std::vector<std::string> ids;
    for (auto item : r.Payload("compList").children("compItem"))
        ids.push_back(item.child("CustomerID").text().get());
    EXPECT_EQ(ids, (std::vector<std::string>{"4", "17", "30"}));
    EXPECT_EQ(r.At("compList/compItem/Code") + r.At("compList/compItem/CorpName0"), "C4名前");
}

TEST_F(RecordPagesTest, CodeOrAgencyYearAloneOrAnAddOfAKnownCustomerLeaveTheStamp) {
    CreateCustomer(u_, 9);
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php",
                    "CustomerID=9&CorpName0=旧&MinName=M&CorpKana0=カブシキガイシャ&"),
              1);
    const std::string kihon = Stamp("customer/getCompKihon.php", 9);
    const std::string gyoshu = Stamp("customer/getCompGyoshu.php", 9);
    ASSERT_FALSE(kihon.empty());
    clock_->Advance(2min);
    // The code travels with the roster and the agency year only upward: a moved stamp here
    // would show the local record as changed on both sides. An add of a customer already
    // there carries the short kana under the kana name's key: that is no change either.
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php", "CustomerID=9&Code=NEW&"), 1);
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php", "CustomerID=9&KanriNendoNyusatsu=2025&"), 1);
    ASSERT_EQ(Flags(u_, "customer/createCompKihon.php",
                    "CustomerID=9&Code=C9&CorpName0=エー&CorpKanaS=エー&CorpKana0=エー&", "id"),
              1);
    EXPECT_EQ(Stamp("customer/getCompKihon.php", 9), kihon);
    EXPECT_EQ(Stamp("customer/getCompGyoshu.php", 9), gyoshu);
    const Item after = Kihon(9);
    EXPECT_EQ(
        after.at("CORPKANA0") + after.at("CORPNAME0") + after.at("CORPKANAS") + after.at("CODE"),
        "カブシキガイシャエーエーC9");
    EXPECT_EQ(after.at("MINNAME"), "M") << "a partial update changes only what it carries";
    EXPECT_EQ(Call(u_, "customer/getCompList.php", "").At("compList/compItem/RecordUpdate0"),
              kihon);
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php", "CustomerID=9&Code=N2&CorpName0=新&"), 1);
    EXPECT_GT(Stamp("customer/getCompKihon.php", 9), kihon) << "a compared field moves it";
}

TEST_F(RecordPagesTest, DelegationFormWithoutAMainRowIsAcceptedAndReadsAsEmpty) {
    CreateCustomer(u_, 11);
    const std::string main = "prefcust/99/setIninMain.php";
    ASSERT_EQ(Flags(u_, main, "CustomerID=11&IninMainItemID=4&vno=1&SubShokuin=s&"), 1);
    // A form whose main row is gone locally: the main post carries an empty item ID.
    ASSERT_EQ(Flags(u_, main, "CustomerID=11&IninMainItemID=&vno=&SubShokuin=&"), 1);
    ASSERT_EQ(Flags(u_, "prefcust/99/setIninSub.php",
                    "CustomerID=11&IninSubItemID=1&DISABLEDALL=DISABLEDALL&vno=1&IninTitle=t&"),
              1);
    const Reply r = Call(u_, "prefcust/99/getIninMain.php", "CustomerID=11&");
    const auto mainList = ReadList(r, "Customer", "IninMain", {});
    ASSERT_TRUE(mainList) << r.text;
    EXPECT_TRUE(mainList->empty()) << "the server holds what the office holds: no main row";
    const auto subs = ReadList(Call(u_, "prefcust/99/getIninSub.php", "CustomerID=11&"), "Customer",
                               "IninSub", {"vno", "IninTitle"});
    EXPECT_EQ(subs ? subs->size() : 0u, 1u);
    EXPECT_EQ(Flags(u_, "customer/setMemo.php", "CustomerID=11&History=h&"), -1)
        << "other lists still need an item ID";
}

// The details page's combined stamp is the linkage tests' (a changed office must show).
TEST_F(RecordPagesTest, MainPageAddsTheStaffCountWithoutItsStamp) {
    CreateCustomer(u_, 2);
    Call(u_, "customer/setCompShokuin.php",
         "CustomerID=2&ShokuinItemID=1&DISABLEDALL=DISABLEDALL&name1=a&vno=1&");
    Call(u_, "customer/setCompShokuin.php", "CustomerID=2&ShokuinItemID=2&name1=b&vno=2&");
    Reply main = Call(u_, "customer/getCompKihonMain.php", "CustomerID=2&");
    EXPECT_EQ(main.At("Customer/ShokuinList/ShokuinCount"), "2");
    EXPECT_FALSE(main.Payload("Customer").child("ShokuinList").child("RecordUpdate"))
        << "it would override the record's stamp";
}

TEST_F(RecordPagesTest, EveryDeclaredListKindRoundTripsItsItemsAndDisabledAllReplacesTheList) {
    CreateCustomer(u_, 6);
    const auto& cat = TheCatalogue();
    for (const auto& page : cat.SetPages()) {
        const auto& store = *cat.Store(page.targets.front().store);
        if (!store.list) continue;
        std::string getPath = page.path;
        getPath.replace(getPath.find("/set"), 4, "/get");
        const bool office = page.scope == Scope::Office;
        const char* root = office ? "Master" : "Customer";
        std::string start = office ? "" : "CustomerID=6&";
        if (page.scope == Scope::CustomerDataFile) start += "DataFileID=12.5&DataFileType=1&";
        const int items = store.singleItem ? 1 : 2;
        // A first round that the second replaces whole.
        for (int round = 0; round < 2; ++round)
            for (int n = 1; n <= items; ++n) {
                std::string body = start + store.ItemIdKey() + "=" + std::to_string(100 + n) + "&";
                if (n == 1) body += "DISABLEDALL=DISABLEDALL&";
                for (const auto& f : store.fields)
                    body += f + "=" +
                            (f == "vno" || f == "LocalIndex"
                                 ? std::to_string(n)
                                 : f + "<&>" + std::to_string(n) + (round ? "" : "old")) +
                            "&";
                ASSERT_EQ(Flags(u_, page.path, body), 1) << page.path;
            }
        Reply got = Call(u_, getPath, start);
        auto list = ReadList(got, root, store.stem, store.fields);
        ASSERT_TRUE(list) << getPath << "\n" << got.text;
        ASSERT_EQ(list->size(), static_cast<std::size_t>(items)) << getPath;
        EXPECT_NE(got.At(std::string(root) + "/" + store.stem + "List/RecordUpdate"), "")
            << getPath;
        for (int n = 1; n <= items; ++n) {
            const auto& item = (*list)[static_cast<std::size_t>(n - 1)];
            EXPECT_EQ(item.at(Upper(store.ItemIdKey())), std::to_string(100 + n));
            for (const auto& f : store.fields)
                EXPECT_EQ(item.at(Upper(f)), f == "vno" || f == "LocalIndex"
                                                 ? item.at(Upper(f))
                                                 : f + "<&>" + std::to_string(n))
                    << getPath;
        }
        EXPECT_EQ(office, !got.Payload("Customer"));
        EXPECT_EQ(office, got.At(std::string(root) + "/CustomerID").empty());
    }
}

TEST_F(RecordPagesTest, StaffKeysOfTheClientRoundTripAndLongBodiesAreTaken) {
    CreateCustomer(u_, 3);
    const std::string career(40000, 'k');
    Call(u_, "customer/setCompShokuin.php",
         "CustomerID=3&ShokuinItemID=11&DISABLEDALL=DISABLEDALL&fname1=ﾔﾏﾀﾞ&LicenceDate1=H01&"
         "SenninGyosyuN=01&SenninGyosyu=02&keireki=" +
             career + "&vno=1&");
    const auto items = ReadList(Call(u_, "customer/getCompShokuin.php", "CustomerID=3&"),
                                "Customer", "Shokuin", {"FName1", "licencedate1", "Keireki"});
    ASSERT_TRUE(items && items->size() == 1u);
    const Item& first = (*items)[0];
    EXPECT_EQ(first.at("FNAME1") + first.at("LICENCEDATE1"), "ﾔﾏﾀﾞH01");
    EXPECT_EQ(first.at("SENNINGYOSYUN") + first.at("SENNINGYOSYU"), "0102");
    EXPECT_EQ(first.at("KEIREKI"), career);
}

TEST_F(RecordPagesTest, GyoshuGridKeepsItsOwnStampWhenTheHeaderMoves) {
    CreateCustomer(u_, 4);
    ASSERT_EQ(Flags(u_, "customer/setCompGyoshu.php", "CustomerID=4&MinName=M&EPmtCheck31=1&"), 1);
    const std::string before = Stamp("customer/getCompGyoshu.php", 4);
    clock_->Advance(1min);
    Call(u_, "customer/setCompKihon.php", "CustomerID=4&MinName=M2&");
    Reply again = Call(u_, "customer/getCompGyoshu.php", "CustomerID=4&");
    EXPECT_EQ(again.At("Customer/CompKihon/MinName") + again.At("Customer/Gyoshu/EPmtCheck31"),
              "M21");
    EXPECT_FALSE(again.Payload("Customer").child("CompKihon").child("Code")) << "only the header";
    // The header moved with the main record, whose own stamp tells the offices; a grid that
    // looked newer here would be taken over an office's unsent grid.
    EXPECT_EQ(again.At("Customer/RecordUpdate"), before);
    CreateCustomer(u_, 5);
    ASSERT_EQ(Flags(u_, "customer/setCompKihon.php", "CustomerID=5&MinName=M&"), 1);
    EXPECT_EQ(Stamp("customer/getCompGyoshu.php", 5), "") << "a grid never written";
}

TEST_F(RecordPagesTest, DeletedCustomerLeavesTheRosterWithItsData) {
    CreateCustomer(u_, 1);
    Call(u_, "customer/setMemo.php",
         "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=h&");
    // Deleting a customer that is gone, or never was, is done, not a failure.
    for (const char* id : {"1", "1", "77"})
        EXPECT_EQ(Flags(u_, "customer/deleteCompKihon.php", Id(std::stoi(id)), "id"), 1) << id;
    EXPECT_EQ(Flags(u_, "customer/setInetEnableFlag.php", "CustomerID=1&InetEnableFlag=1&", "id"),
              -1);
    EXPECT_EQ(Call(u_, "customer/getCompList.php", "").At("compList/CompCount"), "0");
    EXPECT_EQ(Flags(u_, "customer/getMemo.php", Id(1)), -1);
    CreateCustomer(u_, 1);
    auto memos = ReadList(Call(u_, "customer/getMemo.php", Id(1)), "Customer", "Memo", {});
    ASSERT_TRUE(memos);
    EXPECT_TRUE(memos->empty()) << "a new customer under an old number starts empty";
}

TEST_F(RecordPagesTest, EnableFlagsRespectTheAccountsLimit) {
    for (int id = 1; id <= 4; ++id) CreateCustomer(u_, id);  // the account may back up 3
    std::vector<std::string> flags;
    const Reply roster = Call(u_, "customer/getCompList.php", "");
    for (auto item : roster.Payload("compList").children("compItem"))
        flags.push_back(item.child("InetEnableFlag").text().get());
    EXPECT_EQ(flags, (std::vector<std::string>{"1", "1", "1", "0"}));
    const std::string page = "customer/setInetEnableFlag.php";
    EXPECT_EQ(Flags(u_, page, "CustomerID=4&InetEnableFlag=1&", "id"), -1);
    EXPECT_EQ(Flags(u_, page, "CustomerID=1&InetEnableFlag=0&", "id"), 1);
    EXPECT_EQ(Flags(u_, page, "CustomerID=4&InetEnableFlag=1&", "id"), 1);
    EXPECT_EQ(Flags(u_, page, "CustomerID=4&InetEnableFlag=7&", "id"), -1);
}

}  // namespace
}  // namespace morvane::server::testing
