// The server's building blocks on their own: body splitting, passwords, tokens, locks, file names,
// XML.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "server/core/Clock.h"
#include "server/core/Locks.h"
#include "server/core/Sessions.h"
#include "server/crypto/Secrets.h"
#include "server/files/FileStore.h"
#include "server/util/FormBody.h"
#include "server/util/Text.h"
#include "server/xml/XmlWriter.h"

namespace morvane::server {
namespace {

using namespace std::chrono_literals;

TEST(FormBody, SplitsOnlyBeforeDeclaredKeysMatchedWithoutCaseAndPrefersTheLongerKey) {
    const auto body = FormBody::Parse(
        "id=u1&TOKEN=t&CustomerID=5&Code=A&B=C&&name1=x=y&PW=&SenninGyosyuN=1&SenninGyosyu=2&",
        {"ID", "token", "CustomerID", "Code", "name1", "PW", "SenninGyosyu", "SenninGyosyuN"});
    EXPECT_FALSE(body.Malformed());
    std::string values;
    for (const auto& [key, value] : body.Fields()) values += key + "=" + value + "|";
    // Keys in their declared spelling; empty values kept.
    EXPECT_EQ(values,
              "ID=u1|token=t|CustomerID=5|Code=A&B=C&|name1=x=y|PW=|SenninGyosyuN=1|"
              "SenninGyosyu=2|");
    EXPECT_EQ(body.GetOr("PW", "x") + body.GetOr("token"), "t");
    // Text before the first key is malformed; an empty body is not.
    EXPECT_TRUE(FormBody::Parse("junk&ID=u1&", {"ID"}).Malformed());
    EXPECT_TRUE(FormBody::Parse("\x01\x02garbage", {"ID"}).Malformed());
    EXPECT_FALSE(FormBody::Parse("", {"ID"}).Malformed());
}

TEST(Passwords, HashIsSaltedAndVerifiesOnlyTheRightPassword) {
    const auto a = HashPassword("p&ss word");
    const auto b = HashPassword("p&ss word");
    EXPECT_NE(a, b);
    EXPECT_EQ(a.find("p&ss"), std::string::npos);
    EXPECT_TRUE(VerifyPassword("p&ss word", a) && VerifyPassword("p&ss word", b));
    for (const auto& [password, hash] : std::vector<std::pair<std::string, std::string>>{
             {"p&ss Word", a}, {"", a}, {"x", "scrypt$16384$8$1$zz$00"}, {"x", "plain"}})
        EXPECT_FALSE(VerifyPassword(password, hash)) << password << " " << hash;
}

class SessionsTest : public ::testing::Test {
protected:
    ManualClock clock;
    SessionStore sessions{clock, 30min};
};

TEST_F(SessionsTest, AcceptsTheCurrentAndThePreviousTokenOnly) {
    const auto t0 = sessions.Open({1, "u1"});
    auto r1 = sessions.Use("u1", t0);
    ASSERT_TRUE(r1);
    const auto t1 = r1->second;
    EXPECT_NE(t1, t0);
    // The reply carrying t1 was lost: t0 still works once more.
    auto r2 = sessions.Use("u1", t0);
    ASSERT_TRUE(r2);
    const auto t2 = r2->second;
    // The token before the newest stays valid; older ones, other users' and none are refused.
    EXPECT_TRUE(sessions.Use("u1", t1));
    EXPECT_FALSE(sessions.Use("u1", t0) || sessions.Use("u2", t2) || sessions.Use("u1", ""));
}

// Holder, lapse and the master lock across the office are the lock pages' tests.
TEST(Locks, RenewalAndLocksApartByAccountAndKind) {
    ManualClock clock;
    LockTable locks(clock, 15min);
    EXPECT_TRUE(locks.Lock(1, LockKind::Customer, 7, "u1"));
    EXPECT_TRUE(locks.Lock(1, LockKind::Master, 7, "u2")) << "masters and customers are apart";
    EXPECT_TRUE(locks.Lock(2, LockKind::Customer, 7, "u2")) << "accounts are apart";
    EXPECT_FALSE(locks.AnyMasterHeldByOther(2, "u1"));
    clock.Advance(10min);
    EXPECT_TRUE(locks.Lock(1, LockKind::Customer, 7, "u1")) << "renewal";
    clock.Advance(10min);
    EXPECT_TRUE(locks.HeldByOther(1, LockKind::Customer, 7, "u2")) << "renewed 10 min ago";
    clock.Advance(6min);
    EXPECT_FALSE(locks.HeldByOther(1, LockKind::Customer, 7, "u2")) << "expired";
}

TEST(FileNames, PlainNamesOnly) {
    for (const char* good : {"決算書.pdf", "a.b.c", "report 2024.xlsx", ".hidden"})
        EXPECT_TRUE(FileStore::ValidName(good)) << good;
    for (const char* bad :
         {"", ".", "..", "../x", "a/b", "a\\b", "x..y", "a\tb", "a\nb", "\x7f", "\xff\xfe"})
        EXPECT_FALSE(FileStore::ValidName(bad)) << bad;
    EXPECT_FALSE(FileStore::ValidName(std::string(256, 'a')));
}

TEST(XmlWriter, EscapesValuesAndRefusesWhatXmlCannotHold) {
    XmlWriter xml("root");
    xml.Open("a").Leaf("v", "x<&>\r\ny").Close();
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_string(xml.Finish().c_str()));
    EXPECT_STREQ(doc.child("root").child("a").child("v").text().get(), "x<&>\r\ny");

    XmlWriter bad("root");
    EXPECT_THROW(bad.Leaf("v", std::string("a\x01", 2)), XmlBuildError);
    EXPECT_THROW(bad.Leaf("v", "\xc0\xaf"), XmlBuildError);
}

TEST(Text, NumbersAsTheBodiesCarryThem) {
    EXPECT_EQ((std::vector<std::int64_t>{LeadingNumber(" 12abc"), LeadingNumber("-3"),
                                         LeadingNumber("x")}),
              (std::vector<std::int64_t>{12, -3, 0}));
    EXPECT_EQ(ParseInt32("2147483647"), 2147483647);
    EXPECT_FALSE(ParseInt32("2147483648") || ParseInt32("1x"));
}

}  // namespace
}  // namespace morvane::server
