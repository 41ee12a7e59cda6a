// Reading a settlement list reply: a list is good only when it is whole.
#include <gtest/gtest.h>

#include "DatedTestUtil.h"
#include "dated/cCustKessan.h"

namespace morvane::test {
namespace {

using KessanReaderTest = MorvaneTest;

TEST_F(KessanReaderTest, AWholeListIsReadIntoItemsInOrder) {
    cCustKessan k;
    // Tags match without regard to case; an unknown tag is passed over.
    auto sixth = KessanTags(6);
    sixth.push_back({"Unknown", "x"});
    sixth[6].first = "OTHER";
    const std::string reply = Document(
        ListPayload("KessanData", 7, "2024/05/01 10:00:00",
                    {KessanItem(5, {{"CheckOther", ""}, {"AcPeriod4", "1.5"}, {"ZaimuType3", "4"}}),
                     ItemXml("kessanDataITEM", sixth)}));
    ASSERT_TRUE(k.ReadXML(reply));
    EXPECT_EQ(k.CustomerID(), 7);
    EXPECT_EQ(k.RecordUpdate(), "2024/05/01 10:00:00");
    EXPECT_EQ(k.Count(), 2);
    ASSERT_EQ(k.Items().size(), 2u);
    const cCustKessanItem& first = k.Items()[0];
    EXPECT_EQ(first.Key, "K5");
    EXPECT_EQ(first.id, 5);
    EXPECT_EQ(first.CustID, 7);
    EXPECT_EQ(first.other, "memo");
    EXPECT_EQ(first.CheckOther, 0);  // an empty element
    EXPECT_EQ(first.AcPeriod[4], "1.5");
    EXPECT_EQ(first.ZaimuType[3], 4);
    EXPECT_EQ(first.ProfDate[0], "2024/06/30");
    EXPECT_EQ(k.Items()[1].Key, "K6");
    EXPECT_EQ(k.Items()[1].DataFile, "kessan6.dat");
}

TEST_F(KessanReaderTest, OneItemShortOfATagFailsTheWholeReply) {
    cCustKessan k;
    for (const char* missing : {"KessanDataItemID", "Other", "ProfDate3", "DataFileID"}) {
        const std::string reply = Document(ListPayload(
            "Kessan", 7, "2024/05/01 10:00:00", {KessanItem(5), KessanItem(6, {}, {missing})}));
        EXPECT_FALSE(k.ReadXML(reply)) << missing;
        EXPECT_EQ(k.Items().size(), 1u) << missing;
    }
}

TEST_F(KessanReaderTest, TheCountTheStampAndTheCustomerDecideTheReply) {
    cCustKessan k;
    // A count that the items do not reach.
    EXPECT_FALSE(k.ReadXML(
        Document(ListPayload("KessanData", 7, "2024/05/01 10:00:00", {KessanItem(5)}, 2))));
    // A stamp that is no date reads as empty and the reply stands.
    ASSERT_TRUE(k.ReadXML(Document(ListPayload("KessanData", 7, "later", {KessanItem(5)}))));
    EXPECT_EQ(k.RecordUpdate(), "");
    // An empty list is a good list.
    ASSERT_TRUE(k.ReadXML(Document(ListPayload("KessanData", 7, "2024/05/01 10:00:00", {}))));
    EXPECT_EQ(k.Count(), 0);
    // Without the stamp, without the customer, or with one id twice: a failed reply.
    EXPECT_FALSE(k.ReadXML(
        Document("<Customer><CustomerID>7</CustomerID><KessanDataList><KessanDataCount>0</"
                 "KessanDataCount></KessanDataList></Customer>")));
    EXPECT_FALSE(k.ReadXML(
        Document("<Customer><KessanDataList><KessanDataCount>0</KessanDataCount><RecordUpdate/>"
                 "</KessanDataList></Customer>")));
    EXPECT_FALSE(k.ReadXML(Document(
        ListPayload("KessanData", 7, "2024/05/01 10:00:00", {KessanItem(5), KessanItem(5)}, 2))));
    // The payload is selected by its exact name; broken XML is no reply.
    EXPECT_FALSE(k.ReadXML(Document("<customer><CustomerID>7</CustomerID></customer>")));
    EXPECT_FALSE(k.ReadXML("<reply><Customer>"));
    EXPECT_TRUE(kit_->Boxes().empty());
}

}  // namespace
}  // namespace morvane::test
