// The server's parts on their own: body splitting, passwords, tokens, locks, file names, XML.
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

TEST(FormBody, SplitsOnlyBeforeDeclaredKeys) {
    const auto body = FormBody::parse("ID=u1&token=t&CustomerID=5&Code=A&B=C&&name1=x=y&",
                                      {"ID", "token", "CustomerID", "Code", "name1"});
    EXPECT_FALSE(body.malformed());
    EXPECT_EQ(body.getOr("Code"), "A&B=C&");
    EXPECT_EQ(body.getOr("name1"), "x=y");
    EXPECT_EQ(body.getOr("CustomerID"), "5");
}

TEST(FormBody, MatchesKeysWithoutCaseAndReportsDeclaredSpelling) {
    const auto body = FormBody::parse("id=u1&TOKEN=t&addr0=東京&", {"ID", "token", "Addr0"});
    EXPECT_EQ(body.getOr("ID"), "u1");
    EXPECT_EQ(body.getOr("token"), "t");
    ASSERT_EQ(body.fields().size(), 3u);
    EXPECT_EQ(body.fields()[2].first, "Addr0");
    EXPECT_EQ(body.fields()[2].second, "東京");
}

TEST(FormBody, KeepsEmptyValuesAndPrefersTheLongerKey) {
    const auto body = FormBody::parse("PW=&SenninGyosyuN=1&SenninGyosyu=2&",
                                      {"PW", "SenninGyosyu", "SenninGyosyuN"});
    EXPECT_TRUE(body.has("PW"));
    EXPECT_EQ(body.getOr("PW", "x"), "");
    EXPECT_EQ(body.getOr("SenninGyosyuN"), "1");
    EXPECT_EQ(body.getOr("SenninGyosyu"), "2");
}

TEST(FormBody, FlagsTextBeforeTheFirstKey) {
    EXPECT_TRUE(FormBody::parse("junk&ID=u1&", {"ID"}).malformed());
    EXPECT_TRUE(FormBody::parse("\x01\x02garbage", {"ID"}).malformed());
    EXPECT_FALSE(FormBody::parse("", {"ID"}).malformed());
}

TEST(Passwords, HashIsSaltedAndVerifiesOnlyTheRightPassword) {
    const auto a = hashPassword("p&ss word");
    const auto b = hashPassword("p&ss word");
    EXPECT_NE(a, b);
    EXPECT_EQ(a.find("p&ss"), std::string::npos);
    EXPECT_TRUE(verifyPassword("p&ss word", a));
    EXPECT_TRUE(verifyPassword("p&ss word", b));
    EXPECT_FALSE(verifyPassword("p&ss Word", a));
    EXPECT_FALSE(verifyPassword("", a));
    EXPECT_FALSE(verifyPassword("x", "scrypt$16384$8$1$zz$00"));
    EXPECT_FALSE(verifyPassword("x", "plain"));
}

TEST(Checksums, Crc32MatchesTheStandardCheckValue) {
    EXPECT_EQ(crcText(crc32Of("123456789")), "CBF43926");
    EXPECT_EQ(crcText(crc32Of("")), "00000000");
}

class SessionsTest : public ::testing::Test {
  protected:
    ManualClock clock;
    SessionStore sessions{clock, 30min};
};

TEST_F(SessionsTest, AcceptsTheCurrentAndThePreviousTokenOnly) {
    const auto t0 = sessions.open({1, "u1"});
    auto r1 = sessions.use("u1", t0);
    ASSERT_TRUE(r1);
    const auto t1 = r1->second;
    EXPECT_NE(t1, t0);
    // The reply carrying t1 was lost: t0 still works once more.
    auto r2 = sessions.use("u1", t0);
    ASSERT_TRUE(r2);
    const auto t2 = r2->second;
    EXPECT_TRUE(sessions.use("u1", t1)) << "the token before the newest stays valid";
    EXPECT_FALSE(sessions.use("u1", t0)) << "older tokens are refused";
    EXPECT_FALSE(sessions.use("u2", t2)) << "a token belongs to its user";
    EXPECT_FALSE(sessions.use("u1", ""));
}

TEST_F(SessionsTest, LapsesAfterTheIdleTimeAndPeekKeepsTheToken) {
    const auto t0 = sessions.open({1, "u1"});
    clock.advance(29min);
    EXPECT_TRUE(sessions.peek("u1", t0));
    clock.advance(29min);
    auto r = sessions.use("u1", t0);
    ASSERT_TRUE(r) << "peek kept the session alive and the token unchanged";
    EXPECT_TRUE(sessions.hasLiveSession("u1", 1));
    clock.advance(31min);
    EXPECT_FALSE(sessions.use("u1", r->second));
    EXPECT_FALSE(sessions.hasLiveSession("u1", 1));
}

TEST(Locks, OneHolderRenewalAndExpiry) {
    ManualClock clock;
    LockTable locks(clock, 15min);
    EXPECT_TRUE(locks.lock(1, LockKind::Customer, 7, "u1"));
    EXPECT_FALSE(locks.lock(1, LockKind::Customer, 7, "u2"));
    EXPECT_TRUE(locks.lock(1, LockKind::Master, 7, "u2")) << "masters and customers are apart";
    EXPECT_TRUE(locks.lock(2, LockKind::Customer, 7, "u2")) << "accounts are apart";
    EXPECT_TRUE(locks.anyMasterHeldByOther(1, "u1"));
    EXPECT_FALSE(locks.anyMasterHeldByOther(1, "u2"));
    EXPECT_FALSE(locks.anyMasterHeldByOther(2, "u1"));
    clock.advance(10min);
    EXPECT_TRUE(locks.lock(1, LockKind::Customer, 7, "u1")) << "renewal";
    clock.advance(10min);
    EXPECT_TRUE(locks.heldByOther(1, LockKind::Customer, 7, "u2")) << "renewed 10 min ago";
    locks.unlock(1, LockKind::Customer, 7, "u2");
    EXPECT_TRUE(locks.heldByOther(1, LockKind::Customer, 7, "u2")) << "only the holder unlocks";
    clock.advance(6min);
    EXPECT_FALSE(locks.heldByOther(1, LockKind::Customer, 7, "u2")) << "expired";
    EXPECT_TRUE(locks.lock(1, LockKind::Customer, 7, "u2"));
    EXPECT_FALSE(locks.anyMasterHeldByOther(1, "u1")) << "the master lock lapsed too";
}

TEST(FileNames, PlainNamesOnly) {
    for (const char* good : {"決算書.pdf", "a.b.c", "report 2024.xlsx", ".hidden"})
        EXPECT_TRUE(FileStore::validName(good)) << good;
    for (const char* bad :
         {"", ".", "..", "../x", "a/b", "a\\b", "x..y", "a\tb", "a\nb", "\x7f", "\xff\xfe"})
        EXPECT_FALSE(FileStore::validName(bad)) << bad;
    EXPECT_FALSE(FileStore::validName(std::string(256, 'a')));
}

TEST(XmlWriter, EscapesValuesAndRefusesWhatXmlCannotHold) {
    XmlWriter xml("root");
    xml.open("a").leaf("v", "x<&>\r\ny").close();
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_string(xml.finish().c_str()));
    EXPECT_STREQ(doc.child("root").child("a").child("v").text().get(), "x<&>\r\ny");

    XmlWriter bad("root");
    EXPECT_THROW(bad.leaf("v", std::string("a\x01", 2)), XmlBuildError);
    EXPECT_THROW(bad.leaf("v", "\xc0\xaf"), XmlBuildError);
}

TEST(Text, NumbersAndPercentDecoding) {
    EXPECT_EQ(leadingNumber(" 12abc"), 12);
    EXPECT_EQ(leadingNumber("-3"), -3);
    EXPECT_EQ(leadingNumber("x"), 0);
    EXPECT_EQ(parseInt32("2147483647"), 2147483647);
    EXPECT_FALSE(parseInt32("2147483648"));
    EXPECT_FALSE(parseInt32("1x"));
    EXPECT_EQ(percentDecode("%E6%B1%BA%20a"), "決 a");
    EXPECT_FALSE(percentDecode("%E"));
    EXPECT_FALSE(percentDecode("%zz"));
}

}  // namespace
}  // namespace morvane::server
