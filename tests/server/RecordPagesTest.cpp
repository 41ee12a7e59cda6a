// The roster and the record pages, read back as the client reads them.
#include "ServerFixture.h"
#include "support/Golden.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;
using morvane::test::Golden;

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
    const Reply after = Call(u_, "customer/getCompKihon.php", Id(9));
    std::string fields;
    for (const char* f : {"CorpKana0", "CorpName0", "CorpKanaS", "Code", "MinName"})
        fields += after.At(std::string("Customer/CompKihon/") + f);
    // A partial update changes only what it carries.
    EXPECT_EQ(fields, "カブシキガイシャエーエーC9M");
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
    const Reply main = Call(u_, "prefcust/99/getIninMain.php", Id(11));
    EXPECT_EQ(main.At("Customer/IninMainList/IninMainCount"), "0") << main.text;
    EXPECT_FALSE(main.Payload("Customer").child("IninMainList").child("IninMainItem"));
    const Reply subs = Call(u_, "prefcust/99/getIninSub.php", Id(11));
    EXPECT_EQ(subs.At("Customer/IninSubList/IninSubCount") +
                  subs.At("Customer/IninSubList/IninSubItem/IninTitle"),
              "1t");
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

// Deleting a customer that is gone, or never was, is done, not a failure; a new customer under
// an old number starts empty.
TEST_F(RecordPagesTest, DeletedCustomerLeavesTheRosterWithItsData) {
    CreateCustomer(u_, 1);
    PostAll("deleted customer");
    EXPECT_EQ(Call(u_, "customer/getCompList.php", "").At("compList/CompCount"), "0");
    CreateCustomer(u_, 1);
    EXPECT_EQ(Call(u_, "customer/getMemo.php", Id(1)).At("Customer/MemoList/MemoCount"), "0");
}

}  // namespace
}  // namespace morvane::server::testing
