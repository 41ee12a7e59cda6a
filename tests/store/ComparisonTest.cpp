// The comparison rule on its table of stamps, the stamps it leaves for the dialog, the date
// texts it compares and shows, the dialog itself, and the newest-stamp routines over real files.
#include <gtest/gtest.h>

#include <filesystem>

#include "component/ctrlMorvane.h"
#include "state/ProcessState.h"
#include "store/StoreTestUtil.h"
#include "store/mdlMorvaneCommon.h"
#include "support/Golden.h"
#include "support/MorvaneTest.h"
#include "util/DateValue.h"
#include "util/Nz.h"

namespace morvane::test {
namespace {

class ComparisonTest : public MorvaneTest {
protected:
    // The compare dialog's question and its two stamps, as shown.
    static std::vector<std::string> Labels(forms::Form& f) {
        return {f.Get<forms::Label>("Label1").Text(), f.Get<forms::Label>("lblDataInfo(1)").Text(),
                f.Get<forms::Label>("lblDataInfo(4)").Text()};
    }
    Golden data_{"store/comparison.txt"};
};

TEST_F(ComparisonTest, DecisionTableWithTheServerClockOffset) {
    for (const auto& row : data_.Table("decision")) {
        SCOPED_TRACE(row[0] + " / " + row[1] + " / " + row[2] + " / " + row[3]);
        const auto stamp = [&](int i) { return row[i] == "-" ? std::string() : row[i]; };
        State().inetServerTimeOffset = std::stoi(row[3]) * DateValue::kOneSecond;
        const std::int32_t result =
            CompareInetDates(Value(stamp(0)), Value(stamp(1)), Value(stamp(2)));
        EXPECT_EQ(result, std::stoi(row[4]));
        // The stamps stay as passed, for the dialog, only when there is a difference.
        const std::vector<std::string> kept = {State().inetDateServer, State().inetDateLocal,
                                               State().inetDateCheck};
        EXPECT_EQ(kept, result ? (std::vector{stamp(0), stamp(1), stamp(2)})
                               : std::vector<std::string>(3));
    }
    // Null and Empty are missing stamps as well.
    EXPECT_EQ(CompareInetDates(Value::Null(), Value(), Value::Null()), 0);
}

TEST_F(ComparisonTest, DateTextsCompareAndShowUnderTheirFormat) {
    for (const auto& c : data_.Table("differ under the format"))
        EXPECT_EQ(DiffDateText(c[0], c[1], c[2]), std::stoi(c[3])) << c[0] << " / " << c[1];
    for (const auto& c : data_.Table("formats"))
        EXPECT_EQ(FormatDate(*DateValue::Parse(c[0]), c[1]), c[2]) << c[0] << " " << c[1];
}

TEST_F(ComparisonTest, DialogShowsStampsMarksTheNewerConfirmsAndAfterAnAgreementKnowsNoDates) {
    ctrlMorvane obj;
    ASSERT_EQ(CompareInetDates(Value("2024/05/01 10:02:00"), Value("2024/05/01 10:03:00"),
                               Value("2024/05/01 10:00:00")),
              3);
    EXPECT_EQ(obj.InetDateServer() + obj.InetDateCheck(), "2024/05/01 10:02:002024/05/01 10:00:00");
    kit_->OnShow("frmSelectCompareMsg", [&](forms::Form& f) {
        EXPECT_EQ(Labels(f), data_.Lines("dialog labels"));
        EXPECT_TRUE(f.Get<forms::Button>("cmdSel(1)").IsDefault());
        EXPECT_FALSE(f.Get<forms::Button>("cmdSel(0)").IsDefault());
        kit_->AnswerNextBox(forms::MsgResult::No);
        f.Get<forms::Button>("cmdSel(0)").Click();  // stays open
        EXPECT_TRUE(f.Visible());
        kit_->AnswerNextBox(forms::MsgResult::Yes);
        f.Get<forms::Button>("cmdSel(1)").Click();
    });
    EXPECT_EQ(obj.ShowCompareMsg(nullptr, "基本情報", {}, {}, {}, {}), 2);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[0].text, data_["take the server's"]);
    EXPECT_EQ(kit_->Boxes()[1].buttons, forms::MsgButtons::YesNo);

    // After an agreement the dialog knows no dates; cancel gives 0.
    const Value t("2024/05/01 10:00:00");
    ASSERT_EQ(CompareInetDates(t, t, t), 0);
    kit_->OnShow("frmSelectCompareMsg", [&](forms::Form& f) {
        EXPECT_EQ(Labels(f), data_.Lines("dialog labels without dates"));
        f.Get<forms::Button>("cmdCancel").Click();
    });
    EXPECT_EQ(obj.ShowCompareMsg(nullptr, "x", {}, {}, {}, {}), 0);
    // Closing the window gives 0 as well.
    EXPECT_EQ(obj.ShowCompareMsg(nullptr, "x", {}, {}, {}, {}), 0);
}

TEST_F(ComparisonTest, NewestStampSkipsNullsAndTextThatIsNoDateAndTheAgreeStampNeedsACondition) {
    const LocalDatabasePaths paths = CreateLocalDatabases(temp_.Path() / "db");
    const std::string db = paths.customer.string();
    Sql(paths.customer, data_["history rows"]);
    const auto newestOf = [&](const std::string& where) {
        return GetRecordUpdateLocal(db, "tCustomerHistory", where);
    };
    const auto unchecked = [&] {
        return One(db, "SELECT COUNT(*) FROM tCustomerHistory WHERE InetCheckDate IS NULL");
    };
    const Value newest = newestOf("disabled=0 And CustomerID = 5");
    ASSERT_TRUE(newest.IsText());
    EXPECT_EQ(DateValue::Parse(newest.AsText())->StampText(), "2024/01/02 03:04:05");
    EXPECT_EQ(newestOf(" where disabled=0 And CustomerID = 5"), newest);
    EXPECT_EQ(NzString(GetInetCheckDateLocal(db, "tCustomerHistory",
                                             "Where disabled=0 AND CustomerID = 5")),
              "2024/02/01");
    EXPECT_TRUE(newestOf("disabled=0 And CustomerID = 6").IsEmpty());
    // Without a condition only the master file is read.
    EXPECT_TRUE(newestOf("").IsEmpty());
    EXPECT_TRUE(
        GetRecordUpdateLocal((temp_.Path() / "none.dat").string(), "t", "disabled=0").IsEmpty());
    const auto master = temp_.Path() / "master.DAT";
    std::filesystem::copy_file(paths.master, master);
    Sql(master,
        "INSERT INTO tYakushoku (Yakushoku, RecordUpdate) VALUES ('a', '2023-04-05 06:07:08');");
    EXPECT_EQ(NzString(GetRecordUpdateLocal(master.string(), "tYakushoku", "")),
              "2023/04/05 6:07:08");

    // The agree stamp writes now, and only under a condition.
    EXPECT_EQ(NormalizeWhere("disabled=0 Where"), "disabled=0 Where");
    SetInetCheckDate(db, "tCustomerHistory", "");
    EXPECT_EQ(unchecked(), "2");
    const DateValue before = State().Clock().Now();
    SetInetCheckDate(db, "tCustomerHistory", "disabled=1 And CustomerID = 5");
    const auto written =
        DateValue::Parse(One(db, "SELECT InetCheckDate FROM tCustomerHistory WHERE disabled = 1"));
    ASSERT_TRUE(written);
    EXPECT_GE(*written, before);
    EXPECT_EQ(unchecked(), "1");
}

}  // namespace
}  // namespace morvane::test
