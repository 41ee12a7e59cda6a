// Reconciling rosters that differ: which dialog the difference calls for, the two dialogs as
// a user drives them, and the choices they hand back through the facade.
#include "RosterTestUtil.h"
#include "component/ctrlMorvane.h"
#include "roster/cCustList.h"
#include "roster/frmSelectCompareCustList.h"
#include "roster/frmSelectCompareCustListAll.h"
#include "util/Text.h"

namespace morvane::test {
namespace {

using forms::MsgResult;
using V = std::vector<std::string>;

constexpr const char* kAll = "frmSelectCompareCustListAll";
constexpr const char* kSelect = "frmSelectCompareCustList";
constexpr const char* kDelLocal = "× ローカルの顧客を削除";
constexpr const char* kDelServer = "× サーバーの顧客を削除";

// "1-20,101-110" as the IDs it names; "none" names none.
std::vector<int> Ids(const std::string& text) {
    std::vector<int> ids;
    for (const auto& range : text == "none" ? V{} : Split(text, ",")) {
        const auto ends = Split(range, "-");
        for (int id = std::stoi(ends.front()); id <= std::stoi(ends.back()); ++id)
            ids.push_back(id);
    }
    return ids;
}

class CompareCustListDlgTest : public RosterDbTest {
protected:
    // Live local customers named as the server names them, but for those in `renamed`.
    void Local(const std::vector<int>& ids, const std::vector<int>& renamed = {}) {
        Sql(paths_.customer, "DELETE FROM tCustomer;");
        for (int id : ids) {
            const bool other = std::find(renamed.begin(), renamed.end(), id) != renamed.end();
            const std::string n = std::to_string(id);
            Sql(paths_.customer,
                "INSERT INTO tCustomer (id, Code, CorpName0, CorpKanaS, disabled) VALUES (" + n +
                    ", '" + (other ? "X" : "C") + n + "', '社" + n + "', 'ｼｬ', 0);");
        }
    }
    static std::unique_ptr<cCustList> Server(const std::vector<RosterEntry>& entries) {
        auto list = std::make_unique<cCustList>();
        EXPECT_TRUE(list->ReadXML(RosterReply(entries)));
        return list;
    }
    Golden data_{"roster/compare-cust-list.txt"};
};

// A difference in number above 10, or one side below half the other, shows the whole rosters;
// so do more than ten additions, deletions or renamed customers; renamed ones alone ask nothing.
TEST_F(CompareCustListDlgTest, HowFarApartTheRostersAreChoosesTheDialog) {
    for (const auto& row : data_.Table("dialog by distance")) {
        SCOPED_TRACE(row[0] + " / " + row[1] + " / " + row[2]);
        Local(Ids(row[0]), Ids(row[2]));
        auto list = Server(Customers(Ids(row[1])));
        list->CompareLocalDB(Db());
        kit_->ClearRecords();
        const std::int32_t result = list->ShowCompareCustListDlg(nullptr);
        if (kit_->ShownForms().empty()) {
            EXPECT_EQ(result ? "result " + std::to_string(result) : "none", row[3]);
        } else {
            EXPECT_EQ(result, -1);  // left unanswered, so it cancels
            EXPECT_EQ(kit_->ShownForms().back().form, row[3]);
        }
    }
}

TEST_F(CompareCustListDlgTest, PerCustomerDialogOffersAddOrDeleteForEachRow) {
    Sql(paths_.customer,
        "INSERT INTO tCustomer (id, Code, CorpName0, disabled) VALUES "
        "(3, 'C3', '株式会社三', 0), (4, 'C4', '四', 0), (8, 'C8', '八', 1);");
    auto server = Server(Customers({5, 6}));
    server->Item("K5")->CorpName0 = "㈱五";
    frmSelectCompareCustList form(*kit_);
    form.SetLocalDB(Db());
    form.SetServerData(server.get());
    // 8 has been deleted and 99 never was here, 77 is not in the server's roster.
    form.SetOnlyLc_IDs("3,4,8,99");
    form.SetOnlySv_IDs("5,6,77");
    kit_->OnShow(kSelect, [&](forms::Form& f) {
        auto& grid = f.Get<forms::Grid>("vfaData");
        EXPECT_EQ(grid.At(2, 5).choices, (V{"ローカルに顧客を追加", kDelServer}));
        // What a row does not offer is not taken, in any column; adding again restores a row.
        grid.ChooseInCell(0, 5, kDelServer);
        grid.ChooseInCell(0, 4, kDelLocal);
        grid.ChooseInCell(1, 5, kDelLocal);
        grid.ChooseInCell(1, 5, "サーバーに顧客を追加");
        EXPECT_EQ(GridRows(grid), data_.Lines("per customer at start"));
        // Deleting marks the side that loses the customer.
        grid.ChooseInCell(1, 5, kDelLocal);
        grid.ChooseInCell(3, 5, kDelServer);
        EXPECT_EQ(GridRows(grid), data_.Lines("per customer chosen"));

        // Declining the confirmation keeps the dialog up and decides nothing.
        kit_->AnswerNextBox(MsgResult::Cancel);
        f.Get<forms::Button>("cmdDo").Click();
        EXPECT_TRUE(f.Visible());
        f.Get<forms::Button>("cmdDo").Click();
        EXPECT_FALSE(f.Visible());
    });
    form.ShowModal(nullptr);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[1].text, data_["per customer confirm"]);
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
    RosterEntry seven = Customer(7);
    seven.stamps[0] = "2024/6/1 8:00:00";
    auto server = Server({seven});
    auto show = [&](std::function<void(forms::Form&)> script) {
        kit_->ClearRecords();
        frmSelectCompareCustListAll form(*kit_);
        form.SetLocalDB(Db());
        form.SetServerData(server.get());
        kit_->OnShow(kAll, std::move(script));
        form.ShowModal(nullptr);
        return form.DlgResult();
    };
    EXPECT_EQ(show([&](forms::Form& f) {
                  EXPECT_EQ(ListRows(f.Get<forms::ListView>("lvwCustomer(0)")),
                            data_.Lines("whole local"));
                  EXPECT_EQ(ListRows(f.Get<forms::ListView>("lvwCustomer(1)")),
                            data_.Lines("whole server"));
                  EXPECT_EQ(f.Get<forms::Label>("lblCount(0)").Text(), "(顧客： 2件)");

                  // Neither side can be taken before the tick; the tick can be taken back.
                  auto& tick = f.Get<forms::CheckBox>("chkButtons");
                  f.Get<forms::Button>("cmdLocal").Click();
                  f.Get<forms::Button>("cmdServer").Click();
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
    EXPECT_EQ(kit_->Boxes()[1].text, data_["whole take local"]);

    EXPECT_EQ(show([](forms::Form& f) {
                  f.Get<forms::CheckBox>("chkButtons").SetChecked(true);
                  f.Get<forms::Button>("cmdLocalPath").Click();
                  f.Get<forms::Button>("cmdServer").Click();
              }),
              1);
    ASSERT_EQ(kit_->Boxes().size(), 2u);
    EXPECT_EQ(kit_->Boxes()[0].text,
              data_["whole path"] + "\n" + paths_.customer.parent_path().string());

    EXPECT_EQ(show([](forms::Form& f) { f.Get<forms::Button>("cmdCancel").Click(); }), -1);
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].buttons, forms::MsgButtons::OK);
}

TEST_F(CompareCustListDlgTest, ABrokenDatabaseLeavesTheLocalListEmpty) {
    auto server = Server({Customer(7)});
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

// Cancelling, by the button or by closing the window, clears the texts.
TEST_F(CompareCustListDlgTest, FacadeHandsTheChoicesBackAsFourIdTexts) {
    LogIn();
    ctrlMorvane obj;
    const Value none;
    const auto texts = [&] {
        return V{obj.GetCompareCustListDlg_AddLocalIDs(), obj.GetCompareCustListDlg_AddServerIDs(),
                 obj.GetCompareCustListDlg_DelLocalIDs(), obj.GetCompareCustListDlg_DelServerIDs()};
    };
    // Nothing compared yet: no dialog, no texts.
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), 0);
    EXPECT_EQ(texts(), V(4));

    Local({1, 2, 3, 4});
    Serve(Customers({1, 2, 5, 6}));
    ASSERT_EQ(obj.CompareCustomerList(Db()), 3);
    forms::Form host(*kit_, "frmHost", "host");
    kit_->OnShow(kSelect, [](forms::Form& f) {
        auto& grid = f.Get<forms::Grid>("vfaData");
        grid.ChooseInCell(0, 5, kDelLocal);
        grid.ChooseInCell(3, 5, kDelServer);
        f.Get<forms::Button>("cmdDo").Click();
    });
    EXPECT_EQ(obj.ShowCompareCustListDlg(&host, none, none, none, none), 6);
    EXPECT_EQ(kit_->ShownForms().back().owner, "frmHost");
    EXPECT_EQ(texts(), (V{"5", "4", "3", "6"}));

    kit_->OnShow(kSelect, [](forms::Form& f) { f.Get<forms::Button>("cmdCancel").Click(); });
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), -1);
    EXPECT_EQ(texts(), V(4));
    EXPECT_EQ(obj.ShowCompareCustListDlg(nullptr, none, none, none, none), -1);
}

}  // namespace
}  // namespace morvane::test
