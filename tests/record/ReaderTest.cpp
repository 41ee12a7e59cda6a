// The record reader: which tags a section needs, how tags match, and where values land.
#include <gtest/gtest.h>

#include "KihonTestUtil.h"
#include "record/cCustKihon.h"
#include "support/Golden.h"

namespace morvane::test {
namespace {

const std::string kStaffCount = "<ShokuinList><ShokuinCount>2</ShokuinCount></ShokuinList>";

TEST(KihonReaderTest, NormalNeedsTheFifteenMainTagsAndMainAlsoTheStaffCount) {
    cCustKihon k;
    const std::string only15 = Document(KihonPayload(RequiredTags()));
    EXPECT_TRUE(k.ReadXMLNormal(only15));
    // All other fields stay empty.
    EXPECT_EQ(std::to_string(k.CustomerID()) + "|" + k.RecordUpdate() + "|" + k.Kihon().Addr.at(1) +
                  "|" + k.Kihon().ExOther.at(17) + "|" + k.Kihon().TAddr.at(0),
              "7|2024/05/01 10:00:00|千代田区|5|");

    EXPECT_FALSE(k.ReadXMLMain(only15));  // no staff count
    EXPECT_TRUE(
        k.ReadXMLMain(Document(KihonPayload(RequiredTags(), "2024/05/01 10:00:00", kStaffCount))));
    EXPECT_EQ(k.ShokuinCount(), 2);

    // Each of the 15 is needed by both sections.
    for (size_t drop = 0; drop < RequiredTags().size(); ++drop) {
        Tags tags = RequiredTags();
        const std::string name = tags[drop].first;
        tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(drop));
        tags.push_back({"TAddr0", "x"});
        const std::string xml = Document(KihonPayload(tags, "2024/05/01 10:00:00", kStaffCount));
        EXPECT_FALSE(k.ReadXMLNormal(xml)) << name;
        EXPECT_FALSE(k.ReadXMLMain(xml)) << name;
    }
}

TEST(KihonReaderTest, CustomerIdAndStampMustBeThereTheLastStampWinsAndBrokenRepliesLeaveNothing) {
    cCustKihon k;
    const std::string kihon = "<CompKihon>" + Elements(RequiredTags()) + "</CompKihon>";
    EXPECT_FALSE(
        k.ReadXMLNormal(Document("<Customer><CustomerID>7</CustomerID>" + kihon + "</Customer>")));
    EXPECT_FALSE(k.ReadXMLNormal(Document(
        "<Customer><RecordUpdate>2024/05/01 10:00:00</RecordUpdate>" + kihon + "</Customer>")));
    // A stamp that is no date still counts as seen; the object holds none.
    EXPECT_TRUE(k.ReadXMLNormal(Document(KihonPayload(RequiredTags(), ""))));
    EXPECT_EQ(k.RecordUpdate(), "");
    // A customer number that will not convert is seen, and stays 0.
    EXPECT_TRUE(k.ReadXMLNormal(Document(
        "<Customer><CustomerID>abc</CustomerID><RecordUpdate>2024/05/01 10:00:00</RecordUpdate>" +
        kihon + "</Customer>")));
    EXPECT_EQ(k.CustomerID(), 0);

    // The last stamp in the payload wins, an empty one too.
    const std::string later =
        "<ShokuinList><RecordUpdate>2024/06/01 08:00:00</RecordUpdate>"
        "<ShokuinCount>0</ShokuinCount></ShokuinList>";
    ASSERT_TRUE(
        k.ReadXMLMain(Document(KihonPayload(RequiredTags(), "2024/05/01 10:00:00", later))));
    EXPECT_EQ(k.RecordUpdate(), "2024/06/01 08:00:00");
    ASSERT_TRUE(k.ReadXMLNormal(
        Document(KihonPayload(RequiredTags(), "2024/05/01 10:00:00", "<RecordUpdate/>"))));
    EXPECT_EQ(k.RecordUpdate(), "");

    // Broken replies read as false and leave nothing.
    EXPECT_FALSE(k.ReadXMLNormal(""));
    EXPECT_EQ(std::to_string(k.CustomerID()) + k.Kihon().ZipCode.at(0), "0");
    EXPECT_FALSE(k.ReadXMLNormal("<reply><Customer><CustomerID>7</CustomerID>"));
    EXPECT_FALSE(k.ReadXMLNormal(Document("<Other/>")));
    EXPECT_FALSE(k.ReadXMLMain("not xml at all"));
}

TEST(KihonReaderTest, ValuesLandInTheirSlotsWhateverTheCaseOfTheirTagsButNotOfCustomer) {
    const Golden data("record/reader.txt");
    Tags tags = RequiredTags();
    const Tags more = TagsOf(data.Joined("tags"));
    tags.insert(tags.end(), more.begin(), more.end());
    cCustKihon k;
    ASSERT_TRUE(k.ReadXMLNormal(Document(KihonPayload(tags))));
    const KihonRecord& r = k.Kihon();
    EXPECT_EQ(
        (std::vector<std::string>{r.other.at(0), r.other.at(9), r.other.at(8), r.ExOther.at(0),
                                  r.ExOther.at(12), r.CorpKana.at(1), r.PmtNo, r.other.at(6),
                                  r.Reserved1.at(1), r.Reserved1.at(2), r.Reserved1.at(4)}),
        data.Lines("slots"));
    // PmtCheck0 is the number its text begins with; HoKoType, no number, stays 0;
    // DataUpdateFlag overwrites UserStaffID.
    EXPECT_EQ((std::vector<int>{r.PmtCheck.at(0), r.Reserved2.at(0), r.Reserved2.at(1),
                                r.Reserved2.at(2), r.Reserved2.at(7), r.CheckEx, r.NyusatsuManage}),
              (std::vector<int>{3, 0, 9, 0, 1, 4, 6}));

    tags.push_back({"CorpKana1", "12"});
    tags.push_back({"PmtNo", "678"});
    ASSERT_TRUE(k.ReadXMLNormal(Document(KihonPayload(tags))));
    // A PmtNo without "#" leaves Other7's slot.
    EXPECT_EQ(k.Kihon().CorpKana.at(1) + "|" + k.Kihon().PmtNo + "|" + k.Kihon().other.at(6),
              "12|678|45");

    // Child tags match without case, but the customer element does not.
    tags = RequiredTags();
    for (auto& [tag, text] : tags) {
        if (tag == "addr1") tag = "ADDR1";
        if (tag == "FAX2") tag = "fax2";
    }
    tags.push_back({"taddr0", "港区"});
    ASSERT_TRUE(k.ReadXMLNormal(Document(KihonPayload(tags))));
    EXPECT_EQ(k.Kihon().Addr.at(1), "千代田区");
    EXPECT_EQ(k.Kihon().FAX.at(2) + "|" + k.Kihon().TAddr.at(0), "4444|港区");

    std::string lower = KihonPayload(RequiredTags());
    lower.replace(lower.find("<Customer>"), 10, "<customer>");
    lower.replace(lower.rfind("</Customer>"), 11, "</customer>");
    EXPECT_FALSE(k.ReadXMLNormal(Document(lower)));
}

}  // namespace
}  // namespace morvane::test
