// The comparison rule on its table of stamps, the stamps it leaves for the dialog, the
// dialog itself, and the newest-stamp routines over real files.
#include <gtest/gtest.h>

#include <filesystem>

#include "component/ctrlMorvane.h"
#include "state/ProcessState.h"
#include "store/StoreTestUtil.h"
#include "store/mdlMorvaneCommon.h"
#include "support/MorvaneTest.h"
#include "util/DateValue.h"
#include "util/Nz.h"

namespace morvane::test {
namespace {

class ComparisonTest : public MorvaneTest {};

std::string At(DateValue t, double seconds) {
    return DateValue(t.Days() + seconds * DateValue::kOneSecond).StampText();
}

TEST_F(ComparisonTest, DecisionTable) {
    const DateValue t = DateValue::FromCivil({2024, 5, 1, 10, 0, 0});
    const std::string T = t.StampText();
    struct Row {
        std::string server, local, check;
        int result;
    };
    const Row rows[] = {
        {"", "", "", 0},
        {"", "", T, 3},
        {"", At(t, 120), T, 2},
        {"", At(t, 60), T, 2},  // local at the end of the check's minute
        {"", At(t, -86400), T, 3},
        {"", "2023/01/01 00:00:00", "", 2},
        {"2020/01/02", "2020/01/01", "", 1},
        {"2020/01/01", "2020/01/01", "", 2},
        {At(t, 69), T, T, 0},
        {At(t, 71), T, T, 1},
        {T, At(t, 71), T, 2},
        {At(t, 120), At(t, 180), T, 3},
        {At(t, 180), At(t, 120), T, 3},
        {At(t, 61), At(t, 300), T, 3},
        {At(t, 3600), "", T, 1},
        {"no date", At(t, 120), T, 2},  // a server text that is no date counts as none
    };
    for (const Row& r : rows) {
        const std::int32_t result =
            CompareInetDates(Value(r.server), Value(r.local), Value(r.check));
        EXPECT_EQ(result, r.result) << r.server << " / " << r.local << " / " << r.check;
        // The stamps stay as passed, for the dialog, only when there is a difference.
        EXPECT_EQ(State().inetDateServer, result ? r.server : "");
        EXPECT_EQ(State().inetDateLocal, result ? r.local : "");
        EXPECT_EQ(State().inetDateCheck, result ? r.check : "");
    }
    // Null and Empty are missing stamps as well.
    EXPECT_EQ(CompareInetDates(Value::Null(), Value(), Value::Null()), 0);
}

TEST_F(ComparisonTest, ServerOffsetMovesOnlyTheServerStamp) {
    const DateValue t = DateValue::FromCivil({2024, 5, 1, 10, 0, 0});
    // The server clock runs two minutes behind: its stamp of t+10s is really t+130s.
    State().inetServerTimeOffset = 120 * DateValue::kOneSecond;
    EXPECT_EQ(CompareInetDates(Value(At(t, 10)), Value(t.StampText()), Value(t.StampText())), 1);
    EXPECT_EQ(State().inetDateServer, At(t, 10));  // kept without the offset
    State().inetServerTimeOffset = -120 * DateValue::kOneSecond;
    EXPECT_EQ(CompareInetDates(Value(At(t, 100)), Value(t.StampText()), Value(t.StampText())), 0);
}

// Two stamps differ only in what the format shows of them, eras included.
TEST_F(ComparisonTest, DiffDateTextComparesUnderTheFormat) {
    const struct {
        const char *a, *b, *format;
        int differ;
    } cases[] = {
        {"2024/01/02 10:00:00", "2024-01-02 10:00:00", "yyyy/MM/dd hh:mm:ss", 0},
        {"2024/01/02 10:00:00", "2024/01/02 11:00:00", "yyyy/MM/dd", 0},
        {"2024/01/02 10:00:00", "2024/01/02 11:00:00", "yyyy/MM/dd hh:mm:ss", 1},
        {"abc", "abc", "yyyy/MM/dd", 0},
        {"2024/01/02", "abc", "yyyy/MM/dd", 1},
        {"2024/06/01 08:00:00", "2024/06/01 23:59:59", "gggee年mm月dd日", 0},
        {"2024/06/01", "2023/06/01", "gggee年mm月dd日", 1},
        {"2024/06/01", "R06/06/01", "gggee年mm月dd日", 1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(DiffDateText(c.a, c.b, c.format), c.differ)
            << c.a << " / " << c.b << " " << c.format;
    EXPECT_EQ(FormatDate(DateValue::FromCivil({2024, 3, 5, 7, 8, 9}), "yyyy年mm月dd日  h:mm:ss"),
              "2024年03月05日  7:08:09");
}

TEST_F(ComparisonTest, DialogShowsStampsMarksTheNewerAndConfirms) {
    ctrlMorvane obj;
    ASSERT_EQ(CompareInetDates(Value("2024/05/01 10:02:00"), Value("2024/05/01 10:03:00"),
                               Value("2024/05/01 10:00:00")),
              3);
    EXPECT_EQ(obj.InetDateServer(), "2024/05/01 10:02:00");
    EXPECT_EQ(obj.InetDateCheck(), "2024/05/01 10:00:00");
    kit_->OnShow("frmSelectCompareMsg", [&](forms::Form& f) {
        EXPECT_EQ(f.Get<forms::Label>("Label1").Text(),
                  "【 基本情報 】のデータについて、サーバーと差異が見つかり、"
                  "どちらが正しいデータか判断できませんでした。");
        EXPECT_EQ(f.Get<forms::Label>("lblDataInfo(1)").Text(),
                  "更新日時： 2024年05月01日  10:02:00");
        EXPECT_EQ(f.Get<forms::Label>("lblDataInfo(4)").Text(),
                  "更新日時： 2024年05月01日  10:03:00 (新しい)");
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
    EXPECT_EQ(kit_->Boxes()[0].text,
              "サーバー側が正しいデータと判断して、ローカルのデータを更新(上書き)します。\r\n"
              "よろしいですか？");
    EXPECT_EQ(kit_->Boxes()[1].buttons, forms::MsgButtons::YesNo);
}

TEST_F(ComparisonTest, DialogAfterAnAgreementKnowsNoDatesAndCancelGivesZero) {
    ctrlMorvane obj;
    ASSERT_EQ(CompareInetDates(Value("2024/05/01 10:00:00"), Value("2024/05/01 10:00:00"),
                               Value("2024/05/01 10:00:00")),
              0);
    kit_->OnShow("frmSelectCompareMsg", [](forms::Form& f) {
        EXPECT_EQ(f.Get<forms::Label>("lblDataInfo(1)").Text(),
                  "更新日時： 不明 または データ無し");
        EXPECT_EQ(f.Get<forms::Label>("lblDataInfo(4)").Text(),
                  "更新日時： 不明 または データ無し");
        f.Get<forms::Button>("cmdCancel").Click();
    });
    EXPECT_EQ(obj.ShowCompareMsg(nullptr, "x", {}, {}, {}, {}), 0);
    // Closing the window gives 0 as well.
    EXPECT_EQ(obj.ShowCompareMsg(nullptr, "x", {}, {}, {}, {}), 0);
}

class StampRoutinesTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        paths_ = CreateLocalDatabases(temp_.Path() / "db");
        Sql(paths_.customer,
            "INSERT INTO tCustomerHistory (CustomerID, disabled, RecordUpdate, InetCheckDate) "
            "VALUES (5, 0, '2024-01-02 03:04:05', NULL), (5, 0, NULL, '2024-02-01 00:00:00'), "
            "(5, 1, '2025-01-01 00:00:00', NULL), (6, 0, 'garbage', 'garbage');");
    }
    std::string Db() const { return paths_.customer.string(); }
    LocalDatabasePaths paths_;
};

TEST_F(StampRoutinesTest, NewestStampSkipsNullsAndTextThatIsNoDate) {
    const Value newest =
        GetRecordUpdateLocal(Db(), "tCustomerHistory", "disabled=0 And CustomerID = 5");
    ASSERT_TRUE(newest.IsText());
    EXPECT_EQ(DateValue::Parse(newest.AsText())->StampText(), "2024/01/02 03:04:05");
    EXPECT_EQ(
        GetRecordUpdateLocal(Db(), "tCustomerHistory", " where disabled=0 And CustomerID = 5"),
        newest);
    EXPECT_EQ(NzString(GetInetCheckDateLocal(Db(), "tCustomerHistory",
                                             "Where disabled=0 AND CustomerID = 5")),
              "2024/02/01");
    EXPECT_TRUE(
        GetRecordUpdateLocal(Db(), "tCustomerHistory", "disabled=0 And CustomerID = 6").IsEmpty());
    // Without a condition only the master file is read.
    EXPECT_TRUE(GetRecordUpdateLocal(Db(), "tCustomerHistory", "").IsEmpty());
    EXPECT_TRUE(
        GetRecordUpdateLocal((temp_.Path() / "none.dat").string(), "t", "disabled=0").IsEmpty());
    const auto master = temp_.Path() / "master.DAT";
    std::filesystem::copy_file(paths_.master, master);
    Sql(master,
        "INSERT INTO tYakushoku (Yakushoku, RecordUpdate) VALUES ('a', '2023-04-05 06:07:08');");
    EXPECT_EQ(NzString(GetRecordUpdateLocal(master.string(), "tYakushoku", "")),
              "2023/04/05 6:07:08");
}

TEST_F(StampRoutinesTest, AgreeStampWritesNowOnlyUnderACondition) {
    EXPECT_EQ(NormalizeWhere("disabled=0 Where"), "disabled=0 Where");
    SetInetCheckDate(Db(), "tCustomerHistory", "");
    EXPECT_EQ(
        One(paths_.customer, "SELECT COUNT(*) FROM tCustomerHistory WHERE InetCheckDate IS NULL"),
        "2");
    const DateValue before = State().Clock().Now();
    SetInetCheckDate(Db(), "tCustomerHistory", "disabled=1 And CustomerID = 5");
    const auto written = DateValue::Parse(
        One(paths_.customer, "SELECT InetCheckDate FROM tCustomerHistory WHERE disabled = 1"));
    ASSERT_TRUE(written);
    EXPECT_GE(*written, before);
    EXPECT_EQ(
        One(paths_.customer, "SELECT COUNT(*) FROM tCustomerHistory WHERE InetCheckDate IS NULL"),
        "1");
}

}  // namespace
}  // namespace morvane::test
