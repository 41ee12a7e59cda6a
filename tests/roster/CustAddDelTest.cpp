// Adding and deleting customers on the server: the bodies as sent, what is read locally,
// and which replies count as done.
#include "RosterTestUtil.h"
#include "component/ctrlMorvane.h"
#include "session/mdlLogin.h"

namespace morvane::test {
namespace {

constexpr const char* kCreate = "customer/createCompKihon.php";
constexpr const char* kDelete = "customer/deleteCompKihon.php";

class CustAddDelTest : public RosterDbTest {
protected:
    void SetUp() override {
        RosterDbTest::SetUp();
        Sql(paths_.customer, data_["customers"]);
        server_->On(kCreate, Envelope(1, "T1"));
        server_->On(kDelete, Envelope(1, "T2"));
        LogIn();
    }
    Golden data_{"roster/cust-add-del.txt"};
    ctrlMorvane obj_;
};

// A deleted row is sent all the same.
TEST_F(CustAddDelTest, CreateSendsTheRowAsItStandsEvenWhenDeletedAndNothingWithoutOne) {
    for (int id : {5, 6}) {
        EXPECT_EQ(obj_.SyncUploadAddCustomer(Db(), id), 1);
        EXPECT_EQ(server_->RequestsTo(kCreate).back().body,
                  "id=" + GetLoginID() + "&token=T1&" + data_["create " + std::to_string(id)]);
    }
    // Without a row nothing goes out; a missing file is a run-time error, told by the trap.
    const auto sent = server_->RequestsTo(kCreate).size();
    EXPECT_EQ(obj_.SyncUploadAddCustomer(Db(), 7), 0);
    EXPECT_TRUE(kit_->Boxes().empty());
    EXPECT_EQ(obj_.SyncUploadAddCustomer((temp_.Path() / "none" / "Customer.dat").string(), 5), 0);
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(server_->RequestsTo(kCreate).size(), sent);
}

// A failure the reply check knows gives 0, with its box, and the login holds; a refusal in the
// payload's own words is not looked at; a lapsed login is found by the request itself.
TEST_F(CustAddDelTest, OnlyTheReplyCheckDecides) {
    server_->On(kCreate, Envelope(-1, "T2"));
    server_->On(kDelete, Envelope(-1, "T3"));
    EXPECT_EQ(obj_.SyncUploadAddCustomer(Db(), 5) + obj_.SyncUploadDelCustomer(5), 0);
    EXPECT_EQ(obj_.LoginState(), 1);
    EXPECT_EQ(kit_->Boxes().size(), 2u);
    server_->On(kDelete, Envelope(1, "T4", "<result>0</result>"));
    EXPECT_EQ(obj_.SyncUploadDelCustomer(5), 1);
    kit_->OnShow("frmLogin", [](forms::Form& f) { f.Get<forms::Button>("cmdCancel").Click(); });
    server_->On(kDelete, Envelope(0, ""));
    EXPECT_EQ(obj_.SyncUploadDelCustomer(5), 0);
    EXPECT_NE(obj_.LoginState(), 1);
}

}  // namespace
}  // namespace morvane::test
