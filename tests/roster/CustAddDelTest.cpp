// Adding and deleting customers on the server: the bodies as sent, what is read locally,
// and which replies count as done.
#include <gtest/gtest.h>

#include "component/ctrlMorvane.h"
#include "session/mdlLogin.h"
#include "store/StoreTestUtil.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

constexpr const char* kCreate = "customer/createCompKihon.php";
constexpr const char* kDelete = "customer/deleteCompKihon.php";

class CustAddDelTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        paths_ = CreateLocalDatabases(temp_.Path() / "data");
        Sql(paths_.customer, R"(
            INSERT INTO tCustomer (id, Code, CorpName0, CorpKanaS, CorpKana0, disabled) VALUES
              (5, 'A&B=1', '株式会社テスト', 'ﾃｽﾄ', 'ﾃｽﾄｶﾌﾞｼｷｶﾞｲｼｬ', 0),
              (6, NULL, '削除済', NULL, NULL, 1);)");
        server_->On(kCreate, Envelope(1, "T1"));
        server_->On(kDelete, Envelope(1, "T2"));
        LogIn();
    }
    std::string Db() const { return paths_.customer.string(); }
    std::string Start(int id) const {
        return "id=" + GetLoginID() + "&token=T1&CustomerID=" + std::to_string(id) + "&";
    }
    LocalDatabasePaths paths_;
};

TEST_F(CustAddDelTest, CreateSendsTheRowAsItStandsEvenWhenDeleted) {
    ctrlMorvane obj;
    EXPECT_EQ(obj.SyncUploadAddCustomer(Db(), 5), 1);
    // Values go unencoded, and the kana name carries the short kana.
    EXPECT_EQ(server_->RequestsTo(kCreate).back().body,
              Start(5) + "Code=A&B=1&CorpName0=株式会社テスト&CorpKanaS=ﾃｽﾄ&CorpKana0=ﾃｽﾄ&");
    // A deleted row is sent all the same; Null columns go as empty values.
    server_->On(kCreate, Envelope(1, "T1"));
    EXPECT_EQ(obj.SyncUploadAddCustomer(Db(), 6), 1);
    EXPECT_EQ(server_->RequestsTo(kCreate).back().body,
              Start(6) + "Code=&CorpName0=削除済&CorpKanaS=&CorpKana0=&");
    EXPECT_TRUE(kit_->Boxes().empty());
}

TEST_F(CustAddDelTest, CreateWithoutARowOrDatabaseSendsNothing) {
    ctrlMorvane obj;
    EXPECT_EQ(obj.SyncUploadAddCustomer(Db(), 7), 0);
    EXPECT_TRUE(kit_->Boxes().empty());
    // A missing file is a run-time error: the trap tells it, and still nothing goes out.
    EXPECT_EQ(obj.SyncUploadAddCustomer((temp_.Path() / "none" / "Customer.dat").string(), 5), 0);
    EXPECT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_TRUE(server_->RequestsTo(kCreate).empty());
}

TEST_F(CustAddDelTest, OnlyTheReplyCheckDecides) {
    ctrlMorvane obj;
    // A failure the reply check knows gives 0, with its box; the login itself holds.
    server_->On(kCreate, Envelope(-1, "T2"));
    server_->On(kDelete, Envelope(-1, "T3"));
    EXPECT_EQ(obj.SyncUploadAddCustomer(Db(), 5), 0);
    EXPECT_EQ(obj.SyncUploadDelCustomer(5), 0);
    EXPECT_EQ(obj.LoginState(), 1);
    EXPECT_EQ(kit_->Boxes().size(), 2u);
    // A refusal in the payload's own words is not looked at.
    server_->On(kDelete, Envelope(1, "T4", "<result>0</result>"));
    EXPECT_EQ(obj.SyncUploadDelCustomer(5), 1);
    // A lapsed login is found by the request itself and gives 0.
    kit_->OnShow("frmLogin", [](forms::Form& f) { f.Get<forms::Button>("cmdCancel").Click(); });
    server_->On(kDelete, Envelope(0, ""));
    EXPECT_EQ(obj.SyncUploadDelCustomer(5), 0);
    EXPECT_NE(obj.LoginState(), 1);
}

}  // namespace
}  // namespace morvane::test
