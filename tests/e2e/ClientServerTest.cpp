// The component against the reference server: login, judged replies and token rotation,
// the clock, the roster both ways, and locks, with real SQLite files on the client side.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "OfficeServerTest.h"
#include "component/ctrlMorvane.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "store/LocalDatabases.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerReply.h"
#include "util/Nz.h"

namespace morvane::test {
namespace {

class ClientServerTest : public OfficeServerTest {
protected:
    void SetUp() override {
        StartServer();
        UseOffice("a");
    }

    std::string Db(const std::string& office) const {
        return (temp_.Path() / office / "db" / "Customer.dat").string();
    }
};

TEST_F(ClientServerTest, LoginTakesTheAccountAndWrongPasswordsAreRefused) {
    ctrlMorvane obj;
    EXPECT_TRUE(DoLogin("u1", "secret-1", kContract));
    EXPECT_EQ(obj.LoginState(), 1);
    EXPECT_FALSE(GetLoginToken().empty());
    EXPECT_EQ(obj.LoginAccountUserName(), "事務員一");
    EXPECT_EQ(obj.LoginAccountContractorName(), "テスト建設事務所");
    EXPECT_EQ(obj.LoginAccountContractEnd(), "2027/03/31");
    EXPECT_EQ(obj.LoginAccountMaxCustomer(), "50");

    EXPECT_FALSE(DoLogin("u1", "wrong", kContract));
    EXPECT_NE(obj.LoginState(), 1);
    EXPECT_FALSE(DoLogin("u1", "secret-1", "K-999"));
    EXPECT_NE(obj.LoginState(), 1);
    EXPECT_TRUE(kit_->Boxes().empty());  // the login exchange itself tells nothing
}

TEST_F(ClientServerTest, TokensRotateAndAnExpiredLoginAsksForTheDialog) {
    ctrlMorvane obj;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    const std::string first = GetLoginToken();
    ASSERT_NE(SendRequest(page::kGetKessanTaioh, UpperBody()), "");
    const std::string second = GetLoginToken();
    EXPECT_NE(first, second);
    EXPECT_EQ(obj.LoginState(), 1);

    clock_->Advance(std::chrono::hours(1));
    kit_->OnShow("frmLogin", [](forms::Form& f) { f.Get<forms::Button>("cmdNoConnect").Click(); });
    EXPECT_EQ(SendRequest(page::kGetKessanTaioh, UpperBody()), "");
    ASSERT_EQ(kit_->ShownForms().size(), 1u);
    EXPECT_EQ(kit_->ShownForms()[0].form, "frmLogin");
    EXPECT_EQ(obj.LoginState(), 99);
}

TEST_F(ClientServerTest, ServerClockOffsetIsMeasuredAgainstTheServersTime) {
    ctrlMorvane obj;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    obj.UpdateServerTimeOffset();
    // Same machine: the offset is the fixed one-second correction, give or take the round trip.
    const double seconds = std::stod(obj.InetServerTimeOffset()) * 86400.0;
    EXPECT_NEAR(seconds, -1.0, 2.5);
    EXPECT_EQ(server_->Port() > 0, true);
}

TEST_F(ClientServerTest, RosterGoesUpByPagesAndComesDownToASecondOffice) {
    CreateLocalDatabases(temp_.Path() / "a" / "db", {.customers = 3});
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    EXPECT_EQ(a.CompareCustomerList(Db("a")), 4);  // the server has none yet

    // The roster's additions, as the add-customer upload sends them.
    for (int id = 1; id <= 3; ++id) {
        std::string body = LowerCustomerBody(id);
        AppendField(body, "Code", "C" + std::to_string(id));
        AppendField(body, "CorpName0", "株式会社" + std::to_string(id));
        AppendField(body, "CorpKanaS", "ｶﾌﾞ");
        AppendField(body, "CorpKana0", "ｶﾌﾞ");
        ASSERT_NE(SendRequest(page::kCreateCompKihon, body), "") << id;
    }
    // The same IDs on both sides; names may differ, the roster counts IDs.
    EXPECT_EQ(a.CompareCustomerList(Db("a")), 0);
    // New customers on the server carry no stamps: their tables are newer here, not backed up.
    EXPECT_FALSE(a.CustmerBackuped(2));
    EXPECT_NE(a.CustmerBackupedTableSyncFlag(2, 0), 0);
    EXPECT_EQ(a.CustmerRecordUpdate_Server(2), "");
    EXPECT_NE(a.CustmerRecordUpdate_Local(2), "");

    UseOffice("b");
    CreateLocalDatabases(temp_.Path() / "b" / "db", {});
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.CompareCustomerList(Db("b")), 5);  // nothing here yet
    EXPECT_EQ(b.SyncDownloadCustomerList(Db("b")), 1);
    EXPECT_EQ(b.CompareCustomerList(Db("b")), 0);
    for (const auto& box : kit_->Boxes()) ADD_FAILURE() << box.title << ": " << box.text;
}

TEST_F(ClientServerTest, ALockHeldByOneUserIsRefusedToTheOther) {
    auto lock = [](std::int32_t custId) {
        const std::string reply = SendRequest(page::kLockComp, LowerCustomerBody(custId));
        const auto at = reply.find("<result>");
        return at == std::string::npos ? std::string("none") : reply.substr(at + 8, 1);
    };
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    std::string body = LowerCustomerBody(7);
    AppendField(body, "Code", "C7");
    AppendField(body, "CorpName0", "七");
    AppendField(body, "CorpKanaS", "ﾅﾅ");
    AppendField(body, "CorpKana0", "ﾅﾅ");
    ASSERT_NE(SendRequest(page::kCreateCompKihon, body), "");
    EXPECT_EQ(lock(7), "1");
    const std::string tokenA = GetLoginToken();

    UseOffice("b");
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(lock(7), "0");  // refused, and told as data, not as a failure
    EXPECT_EQ(GetLoginState(), 1);
    EXPECT_TRUE(kit_->Boxes().empty());
}

}  // namespace
}  // namespace morvane::test
