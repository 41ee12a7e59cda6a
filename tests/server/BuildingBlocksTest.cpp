// The server's building blocks on their own: body splitting, passwords, locks, XML, numbers.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "server/core/Clock.h"
#include "server/core/Locks.h"
#include "server/crypto/Secrets.h"
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
