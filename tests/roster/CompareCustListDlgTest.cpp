// Reconciling rosters that differ: which dialog the difference calls for, the two dialogs as
// a user drives them, and the choices they hand back through the facade.
#include <gtest/gtest.h>

#include <set>

#include "RosterTestUtil.h"
#include "component/ctrlMorvane.h"
#include "roster/cCustList.h"
#include "roster/frmSelectCompareCustList.h"
#include "roster/frmSelectCompareCustListAll.h"
#include "state/ProcessState.h"
#include "store/StoreTestUtil.h"
#include "support/MorvaneTest.h"

namespace morvane::test {
namespace {

using forms::MsgResult;

constexpr const char* kAll = "frmSelectCompareCustListAll";
constexpr const char* kSelect = "frmSelectCompareCustList";

class CompareCustListDlgTest : public MorvaneTest {
protected:
    void SetUp() override {
        MorvaneTest::SetUp();
        paths_ = CreateLocalDatabases(temp_.Path() / "data");
    }
    std::string Db() const { return paths_.customer.string(); }
    // Live local customers named as the server names them, but for those in `renamed`.
    void Local(const std::vector<int>& ids, const std::set<int>& renamed = {}) {
        std::string values;
        for (int id : ids)
            values += (values.empty() ? "(" : ",(") + std::to_string(id) + ", '" +
                      (renamed.count(id) ? "X" : "C") + std::to_string(id) + "', '社" +
                      std::to_string(id) + "', 'ｼｬ', 0)";
        Sql(paths_.customer, "DELETE FROM tCustomer;");
        if (!values.empty())
            Sql(paths_.customer,
                "INSERT INTO tCustomer (id, Code, CorpName0, CorpKanaS, disabled) VALUES " +
                    values + ";");
    }
    static std::unique_ptr<cCustList> Server(const std::vector<int>& ids) {
        auto list = std::make_unique<cCustList>();
        for (int id : ids) {
            cCustListItem& item = list->Add(id);
            item.Code = "C" + std::to_string(id);
            item.CorpName0 = "社" + std::to_string(id);
            item.CorpKanaS = "ｼｬ";
        }
        return list;
    }
    // The dialog the rosters call for ("" for none), left unanswered so that it cancels.
    std::string DialogFor(const std::vector<int>& local, const std::vector<int>& server,
                          const std::set<int>& renamed = {}) {
        Local(local, renamed);
        auto list = Server(server);
        list->CompareLocalDB(Db());
        kit_->ClearRecords();
        const std::int32_t result = list->ShowCompareCustListDlg(nullptr);
        if (kit_->ShownForms().empty())
            return result == 0 ? "" : "result " + std::to_string(result);
        EXPECT_EQ(result, -1);
        return kit_->ShownForms().back().form;
    }
    LocalDatabasePaths paths_;
};

std::vector<int> Range(int from, int to) {
    std::vector<int> ids;
    for (int id = from; id <= to; ++id) ids.push_back(id);
    return ids;
}

std::vector<int> Join(std::vector<int> a, const std::vector<int>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST_F(CompareCustListDlgTest, HowFarApartTheRostersAreChoosesTheDialog) {
    // Empty sides ask nothing.
    EXPECT_EQ(DialogFor({}, {}), "");
    EXPECT_EQ(DialogFor({}, {1}), "result 5");
    EXPECT_EQ(DialogFor({1}, {}), "result 4");
    // A difference in number above 10 shows the whole rosters; 10 is still per customer.
    EXPECT_EQ(DialogFor(Range(1, 21), Range(1, 10)), kAll);
    EXPECT_EQ(DialogFor(Range(1, 20), Range(1, 10)), kSelect);
    // One side below half the other, either way round; exactly half is not below.
    EXPECT_EQ(DialogFor(Range(1, 12), Range(1, 5)), kAll);
    EXPECT_EQ(DialogFor(Range(1, 5), Range(1, 12)), kAll);
    EXPECT_EQ(DialogFor(Range(1, 2), Range(1, 4)), kSelect);
    // Ten additions and ten deletions with five renamed customers stay per customer...
    const std::set<int> five{1, 2, 3, 4, 5}, six{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(
        DialogFor(Join(Range(1, 20), Range(101, 110)), Join(Range(1, 20), Range(201, 210)), five),
        kSelect);
    // ...but one more of any of them does not.
    EXPECT_EQ(DialogFor(Join(Range(1, 20), Range(101, 111)), Join(Range(1, 20), Range(201, 210))),
              kAll);
    EXPECT_EQ(DialogFor(Join(Range(1, 20), Range(101, 110)), Join(Range(1, 20), Range(201, 211))),
              kAll);
    EXPECT_EQ(DialogFor(Range(1, 21), Range(1, 20), six), kAll);
    EXPECT_EQ(DialogFor(Range(1, 21), Range(1, 20), five), kSelect);
    // Renamed customers alone are not worth a question.
    EXPECT_EQ(DialogFor(Range(1, 5), Range(1, 5), six), "");
}

TEST_F(CompareCustListDlgTest, PerCustomerDialogOffersAddOrDeleteForEachRow) {
    Sql(paths_.customer,
        "INSERT INTO tCustomer (id, Code, CorpName0, disabled) VALUES "
        "(3, 'C3', '株式会社三', 0), (4, 'C4', '四', 0), (8, 'C8', '八', 1);");
    auto server = Server({5, 6});
    server->Item("K5")->CorpName0 = "㈱五";
    frmSelectCompareCustList form(*kit_);
    form.SetLocalDB(Db());
    form.SetServerData(server.get());
    // 8 has been deleted and 99 never was here, 77 is not in the server's roster.
    form.SetOnlyLc_IDs("3,4,8,99");
    form.SetOnlySv_IDs("5,6,77");
    kit_->OnShow(kSelect, [&](forms::Form& f) {
        auto& grid = f.Get<forms::Grid>("vfaData");
        ASSERT_EQ(grid.Rows(), 4);
        auto row = [&](int r) {
            std::vector<std::string> texts;
            for (int c = 1; c < grid.Cols(); ++c) texts.push_back(grid.At(r, c).text);
            return texts;
        };
        using V = std::vector<std::string>;
        EXPECT_EQ(row(0), (V{"C3", "三", "存在する", "（データ無）", "サーバーに顧客を追加"}));
        EXPECT_EQ(row(2), (V{"C5", "五", "（データ無）", "存在する", "ローカルに顧客を追加"}));
        EXPECT_EQ(grid.At(1, 0).data + grid.At(3, 0).data, "46");
        EXPECT_EQ(grid.At(2, 5).choices, (V{"ローカルに顧客を追加", "× サーバーの顧客を削除"}));

        // Deleting marks the side that loses the customer; adding again restores it.
        grid.ChooseInCell(1, 5, "× ローカルの顧客を削除");
        EXPECT_EQ(grid.At(1, 3).text, "× 削除します");
        grid.ChooseInCell(1, 5, "サーバーに顧客を追加");
        EXPECT_EQ(grid.At(1, 3).text, "存在する");
        grid.ChooseInCell(1, 5, "× ローカルの顧客を削除");
        grid.ChooseInCell(3, 5, "× サーバーの顧客を削除");
        EXPECT_EQ(grid.At(3, 4).text, "× 削除します");
        EXPECT_EQ(grid.At(3, 3).text, "（データ無）");
        // What a row does not offer is not taken, in any column.
        grid.ChooseInCell(0, 5, "× サーバーの顧客を削除");
        grid.ChooseInCell(0, 4, "× ローカルの顧客を削除");
        EXPECT_EQ(row(0), (V{"C3", "三", "存在する", "（データ無）", "サーバーに顧客を追加"}));

        // Declining the confirmation keeps the dialog up and decides nothing.
        kit_->AnswerNextBox(MsgResult::Cancel);
        f.Get<forms::Button>("cmdDo").Click();
        EXPECT_TRUE(f.Visible());
        f.Get<forms::Button>("cmdDo").Click();
        EXPECT_FALSE(f.Visible());
    });
    form.ShowModal(nullptr);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[1].text,
              "上記の設定で、ローカルとインターネットサーバー間でデータの同期を行います。\r\n\r\n"
              "よろしいですか？　");
    EXPECT_EQ(kit_->Boxes()[1].title, form.Caption());
    EXPECT_FALSE(form.bCancel());
    EXPECT_EQ(form.AddServerDs() + form.DelLocalDs() + form.AddLocalDs() + form.DelServerDs(),
              "3456");
}

TEST_F(CompareCustListDlgTest, WholeRosterDialogListsBothSidesAndNeedsTheTick) {
    Sql(paths_.customer,
        "INSERT INTO tCustomer (id, Code, CorpName0, disabled, RecordUpdate) VALUES "
        "(2, 'C2', '二', 0, NULL), (1, 'C1', '株式会社', 0, '2024-05-01 09:05:03'), "
        "(3, 'C3', '三', 1, NULL);");
    auto server = Server({7});
    auto stamps = std::make_shared<ServerStamps>();
    stamps->SetText(0, "2024/6/1 8:00:00");
    server->Item("K7")->Stamps = stamps;
    auto show = [&](std::function<void(forms::Form&)> script) {
        frmSelectCompareCustListAll form(*kit_);
        form.SetLocalDB(Db());
        form.SetServerData(server.get());
        kit_->OnShow(kAll, std::move(script));
        form.ShowModal(nullptr);
        return form.DlgResult();
    };
    EXPECT_EQ(show([&](forms::Form& f) {
                  auto& local = f.Get<forms::ListView>("lvwCustomer(0)");
                  auto& sv = f.Get<forms::ListView>("lvwCustomer(1)");
                  using V = std::vector<std::string>;
                  ASSERT_EQ(local.items.size(), 2u);
                  EXPECT_EQ(local.items[0].key, "k1");
                  EXPECT_EQ(local.items[0].texts, (V{"C1", "", "2024/05/01 09:05:03"}));
                  EXPECT_EQ(local.items[1].texts, (V{"C2", "二", ""}));
                  ASSERT_EQ(sv.items.size(), 1u);
                  EXPECT_EQ(sv.items[0].texts, (V{"C7", "社7", "2024/06/01 08:00:00"}));
                  EXPECT_EQ(f.Get<forms::Label>("lblCount(0)").Text(), "(顧客： 2件)");

                  // Neither side can be taken before the tick; the tick can be taken back.
                  auto& tick = f.Get<forms::CheckBox>("chkButtons");
                  f.Get<forms::Button>("cmdLocal").Click();
                  f.Get<forms::Button>("cmdServer").Click();
                  EXPECT_TRUE(kit_->Boxes().empty());
                  tick.SetChecked(true);
                  tick.SetChecked(false);
                  f.Get<forms::Button>("cmdServer").Click();
                  EXPECT_TRUE(kit_->Boxes().empty());
                  tick.SetChecked(true);
                  kit_->AnswerNextBox(MsgResult::Cancel);
                  f.Get<forms::Button>("cmdLocal").Click();
                  EXPECT_TRUE(f.Visible());
                  f.Get<forms::Button>("cmdLocal").Click();
              }),
              2);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[1].text,
              "ローカルのデータを採用するように選択されました。　\r\n"
              "インターネットサーバーにローカルの顧客一覧をアップロードします。　\r\n"
              "よろしいですか？　");

    kit_->ClearRecords();
    EXPECT_EQ(show([](forms::Form& f) {
                  f.Get<forms::CheckBox>("chkButtons").SetChecked(true);
                  f.Get<forms::Button>("cmdLocalPath").Click();
                  f.Get<forms::Button>("cmdServer").Click();
              }),
              1);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[0].text, "現在のローカルのデータの保存場所は以下の通りです。\r\n" +
                                         paths_.customer.parent_path().string());

    kit_->ClearRecords();
    EXPECT_EQ(show([](forms::Form& f) { f.Get<forms::Button>("cmdCancel").Click(); }), -1);
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].buttons, forms::MsgButtons::OK);
}

TEST_F(CompareCustListDlgTest, ABrokenDatabaseLeavesTheLocalListEmpty) {
    auto server = Server({7});
    frmSelectCompareCustListAll form(*kit_);
    form.SetLocalDB((temp_.Path() / "none" / "Customer.dat").string());
    form.SetServerData(server.get());
    kit_->OnShow(kAll, [](forms::Form& f) {
        EXPECT_EQ(
            f.Get<forms::Label>("lblCount(0)").Text() + f.Get<forms::Label>("lblCount(1)").Text(),
            "(顧客： 0件)(顧客： 1件)");
    });
    form.ShowModal(nullptr);
    EXPECT_EQ(form.DlgResult(), -1);
    EXPECT_EQ(kit_->Boxes().size(), 1u);  // the error trap's
}

class CompareCustListFacadeTest : public CompareCustListDlgTest {
protected:
    void Serve(const std::vector<int>& ids) {
        std::vector<RosterEntry> entries;
        for (int id : ids)
            entries.push_back(
                {id, "C" + std::to_string(id), "社" + std::to_string(id), "ｼｬ", 1, {}});
        server_->On("customer/getCompList.php", RosterReply(entries));
    }
    void SetUp() override {
        CompareCustListDlgTest::SetUp();
        server_->On("gettime.php", TimeReply(State().Clock().Now().StampText()));
        LogIn();
    }
    std::vector<std::string> Texts(const ctrlMorvane& obj) {
        return {obj.GetCompareCustListDlg_AddLocalIDs(), obj.GetCompareCustListDlg_AddServerIDs(),
                obj.GetCompareCustListDlg_DelLocalIDs(), obj.GetCompareCustListDlg_DelServerIDs()};
    }
};

TEST_F(CompareCustListFacadeTest, ChoicesComeBackAsFourIdTexts) {
    ctrlMorvane obj;
    const Value none;
    using V = std::vector<std::string>;
    // Nothing compared yet: no dialog, no texts.
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), 0);
    EXPECT_EQ(Texts(obj), (V{"", "", "", ""}));

    Local({1, 2, 3, 4});
    Serve({1, 2, 5, 6});
    ASSERT_EQ(obj.CompareCustomerList(Db()), 3);
    forms::Form host(*kit_, "frmHost", "host");
    kit_->OnShow(kSelect, [](forms::Form& f) {
        auto& grid = f.Get<forms::Grid>("vfaData");
        grid.ChooseInCell(0, 5, "× ローカルの顧客を削除");
        grid.ChooseInCell(3, 5, "× サーバーの顧客を削除");
        f.Get<forms::Button>("cmdDo").Click();
    });
    EXPECT_EQ(obj.ShowCompareCustListDlg(&host, none, none, none, none), 6);
    EXPECT_EQ(kit_->ShownForms().back().owner, "frmHost");
    EXPECT_EQ(Texts(obj), (V{"5", "4", "3", "6"}));

    // Cancelling, by the button or by closing the window, clears the texts.
    kit_->OnShow(kSelect, [](forms::Form& f) { f.Get<forms::Button>("cmdCancel").Click(); });
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), -1);
    EXPECT_EQ(Texts(obj), (V{"", "", "", ""}));
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), -1);
}

}  // namespace
}  // namespace morvane::test
