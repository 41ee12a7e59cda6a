// The prefecture forms between two offices through the reference server: the delegation form
// goes up from one office and down into the other; machinery lists go up, each kept by the
// server under its own data file.
#include <gtest/gtest.h>

#include "OfficeServerTest.h"
#include "support/Golden.h"
#include "util/Value.h"

namespace morvane::test {
namespace {

constexpr std::int32_t kCustomer = 4;

class PrefectureFormsTest : public OfficeServerTest {
protected:
    // The office's prefcustom.dat.
    std::string UseOffice(const std::string& name) {
        return (std::filesystem::path(UseOfficeDb(name)).parent_path() / kPrefCustomDatabaseName)
            .string();
    }

    // The server's machine makers of one data file's list, in its order.
    static std::vector<std::string> ServerMachines(double dataId, bool kessan) {
        std::string body = UpperCustomerBody(kCustomer);
        AppendField(body, "DataFileID", DoubleText(dataId));
        AppendField(body, "DataFileType", kessan ? "1" : "2");
        const std::string reply = SendRequest(page::kGetKikaiIchiranSub, body);
        std::vector<std::string> makers;
        for (size_t at = reply.find("<Maker>"); at != std::string::npos;
             at = reply.find("<Maker>", at + 1)) {
            const size_t from = at + 7;
            makers.push_back(reply.substr(from, reply.find("</Maker>", from) - from));
        }
        return makers;
    }
};

constexpr const char* kFormColumns =
    "SELECT SubShokuin, SelectDetail, SelectSubShokuin, PrintDate, PrintSubShokuin FROM "
    "t99_ININ_MAIN WHERE disabled = 0";
constexpr const char* kItemColumns =
    "SELECT IninTitle, IninDetail0, IninDetail1, IninDetail2, IninDetail3 FROM t99_ININ_SUB "
    "WHERE disabled = 0 ORDER BY id";

TEST_F(PrefectureFormsTest, TheDelegationFormTravelsFromOneOfficeToTheOther) {
    const std::string dbA = UseOffice("a");
    Sql(dbA, Golden("e2e/prefecture-forms.txt")["delegation form"]);
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    CreateCustomer(kCustomer);
    EXPECT_EQ(a.CompareP99Inin(dbA, kCustomer, 0, true), 2) << "the server has no form yet";
    ASSERT_EQ(a.SyncUploadP99Inin(dbA, kCustomer, 0, true), 1);
    EXPECT_EQ(a.CompareP99Inin(dbA, kCustomer, 0, true), 0);
    NoBoxes();

    const std::string dbB = UseOffice("b");
    ctrlMorvane b;
    ASSERT_TRUE(DoLogin("u2", "secret-2", kContract));
    EXPECT_EQ(b.CompareP99Inin(dbB, kCustomer, 0, true), 1);
    ASSERT_EQ(b.SyncDownloadP99Inin(dbB, kCustomer, 0, true), 1);
    EXPECT_EQ(b.CompareP99Inin(dbB, kCustomer, 0, true), 0);
    NoBoxes();

    EXPECT_EQ(Rows(dbB, kFormColumns), Rows(dbA, kFormColumns));
    EXPECT_EQ(Rows(dbB, std::string(kItemColumns)), Rows(dbA, std::string(kItemColumns)));
    EXPECT_EQ(Rows(dbA, std::string(kItemColumns)).size(), 2u);
}

TEST_F(PrefectureFormsTest, MachineryListsAreKeptPerDataFileAndAnEmptiedListEmptiesTheServers) {
    const std::string db = UseOffice("a");
    Sql(db, Golden("e2e/prefecture-forms.txt")["machinery lists"]);
    ctrlMorvane a;
    ASSERT_TRUE(DoLogin("u1", "secret-1", kContract));
    CreateCustomer(kCustomer);
    ASSERT_EQ(a.SyncUploadP99KikaiIchiran(db, kCustomer, 5, true), 1);
    ASSERT_EQ(a.SyncUploadP99KikaiIchiran(db, kCustomer, 5, false), 1);
    ASSERT_EQ(a.SyncUploadP99KikaiIchiran(db, kCustomer, 2.5, true), 1);
    EXPECT_EQ(ServerMachines(5, true), (std::vector<std::string>{"M1", "M&amp;2"}));
    EXPECT_EQ(ServerMachines(5, false), std::vector<std::string>{"Y1"});
    EXPECT_EQ(ServerMachines(2.5, true), std::vector<std::string>{"half"});

    // A machine taken off the list, then the last one: the server follows each time.
    Sql(db, "UPDATE t99_KIKAIICHIRAN_SUB SET disabled = 1 WHERE id = 2;");
    ASSERT_EQ(a.SyncUploadP99KikaiIchiran(db, kCustomer, 5, true), 1);
    EXPECT_EQ(ServerMachines(5, true), std::vector<std::string>{"M&amp;2"});
    Sql(db, "UPDATE t99_KIKAIICHIRAN_SUB SET disabled = 1 WHERE id = 4;");
    ASSERT_EQ(a.SyncUploadP99KikaiIchiran(db, kCustomer, 2.5, true), 1);
    EXPECT_TRUE(ServerMachines(2.5, true).empty());
    EXPECT_EQ(ServerMachines(5, false), std::vector<std::string>{"Y1"}) << "other lists stay";
    NoBoxes();
}

}  // namespace
}  // namespace morvane::test
