// The roster and the record and list pages of every kind, read the way the client reads them.
#include <optional>
#include <set>

#include "ServerFixture.h"
#include "server/records/Kinds.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;
using Item = std::map<std::string, std::string>;

std::string Upper(std::string s) {
    for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

// Children of `node` by upper-cased tag name (the client matches tags without case).
Item ChildrenOf(pugi::xml_node node) {
    Item out;
    for (auto child : node.children()) out[Upper(child.name())] = child.text().get();
    return out;
}

// A list as the client reads it: the payload element by exact name, items kept only when every
// required tag is there, and the list good only when the kept items number the count tag.
std::optional<std::vector<Item>> ReadList(const Reply& r, const char* root, const std::string& stem,
                                          const std::vector<std::string>& tags) {
    auto list = r.Payload(root).child((stem + "List").c_str());
    if (!list) return std::nullopt;
    std::vector<Item> items;
    long count = -1;
    for (auto child : list.children()) {
        if (Upper(child.name()) == Upper(stem + "Count")) count = std::stol(child.text().get());
        if (Upper(child.name()) != Upper(stem + "Item")) continue;
        Item item = ChildrenOf(child);
        bool complete = item.count(Upper(stem + "ItemID")) > 0;
        for (const auto& tag : tags) complete = complete && item.count(Upper(tag)) > 0;
        if (complete) items.push_back(std::move(item));
    }
    if (count != static_cast<long>(items.size())) return std::nullopt;
    return items;
}

TEST_F(ServerTest, RosterListsCustomersAscendingWithAll53StampsEmptyAtCreation) {
    Login u = LogIn();
    for (int id : {30, 4, 17}) CreateCustomer(u, id, "C" + std::to_string(id));
    Reply r = Call(u, "customer/getCompList.php", "");
    auto list = r.Payload("compList");
    ASSERT_TRUE(list) << r.text;
    EXPECT_STREQ(list.child("CompCount").text().get(), "3");
    std::vector<std::string> ids;
    for (auto item : list.children("compItem")) {
        ids.push_back(item.child("CustomerID").text().get());
        // Exact-case tags, every one present.
        for (const char* tag : {"Code", "CorpName0", "CorpKanaS", "InetEnableFlag"})
            EXPECT_TRUE(item.child(tag)) << tag;
        for (int i = 0; i < 53; ++i) {
            auto stamp = item.child(("RecordUpdate" + std::to_string(i)).c_str());
            ASSERT_TRUE(stamp) << i;
            EXPECT_STREQ(stamp.text().get(), "") << "creation leaves stamp " << i << " empty";
        }
    }
    EXPECT_EQ(ids, (std::vector<std::string>{"4", "17", "30"}));
    EXPECT_STREQ(list.child("compItem").child("Code").text().get(), "C4");
    EXPECT_STREQ(list.child("compItem").child("CorpName0").text().get(), "名前");
}

TEST_F(ServerTest, RosterStampsRepeatWhatEachKindsPageReports) {
    Login u = LogIn();
    CreateCustomer(u, 5);
    Call(u, "customer/setCompKihon.php", "CustomerID=5&Code=NEW&");
    clock_->Advance(5s);
    Call(u, "customer/setCompGyoshu.php", "CustomerID=5&EPmtCheck1=1&");
    clock_->Advance(5s);
    Call(u, "customer/setKessanData.php",
         "CustomerID=5&KessanDataItemID=1&DISABLEDALL=DISABLEDALL&RecDate=2024/01/01&vno=1&");
    clock_->Advance(5s);
    Call(u, "prefcust/99/setIninSub.php",
         "CustomerID=5&IninSubItemID=1&DISABLEDALL=DISABLEDALL&vno=1&IninTitle=t&");
    clock_->Advance(5s);
    Call(u, "prefcust/99/setKikaiIchiranMain.php",
         "CustomerID=5&DataFileID=3&DataFileType=1&KikaiIchiranMainItemID=1&CorpName0=c&");
    clock_->Advance(5s);
    Call(u, "prefcust/99/setKikaiIchiranSub.php",
         "CustomerID=5&DataFileID=3&DataFileType=1&DISABLEDALL=DISABLEDALL&");
    clock_->Advance(5s);
    Call(u, "customer/setNyusatsuSanka.php",
         "CustomerID=5&NyusatsuSankaItemID=1&DISABLEDALL=DISABLEDALL&KikanCode=K&vno=1&");
    clock_->Advance(5s);
    Call(u, "customer/setNyusatsuKikan.php",
         "CustomerID=5&NyusatsuKikanItemID=1&DISABLEDALL=DISABLEDALL&KikanName=A&LocalIndex=1&");

    Reply roster = Call(u, "customer/getCompList.php", "");
    auto item = roster.Payload("compList").child("compItem");
    EXPECT_STREQ(item.child("Code").text().get(), "NEW") << "the roster follows the record";
    const auto stampOf = [&](const std::string& path) {
        const bool dataFile = path.find("Kikai") != std::string::npos;
        Reply r =
            Call(u, path, dataFile ? "CustomerID=5&DataFileID=3&DataFileType=1&" : "CustomerID=5&");
        auto c = r.Payload("Customer");
        std::string last;
        for (auto node : c.select_nodes(".//RecordUpdate")) last = node.node().text().get();
        return last;
    };
    const std::map<int, std::string> pages{{0, "customer/getCompKihon.php"},
                                           {2, "customer/getCompGyoshu.php"},
                                           {4, "customer/getKessanData.php"},
                                           {6, "customer/getCompShokuin.php"},
                                           {7, "customer/getNyusatsuSanka.php"},
                                           {8, "customer/getNyusatsuKikan.php"},
                                           {31, "prefcust/99/getIninMain.php"},
                                           {32, "prefcust/99/getIninSub.php"},
                                           {38, "prefcust/99/getKikaiIchiranMain.php"},
                                           {39, "prefcust/99/getKikaiIchiranSub.php"}};
    for (const auto& [index, path] : pages)
        EXPECT_EQ(item.child(("RecordUpdate" + std::to_string(index)).c_str()).text().get(),
                  stampOf(path))
            << path;
    EXPECT_NE(stampOf("customer/getCompKihon.php"), stampOf("customer/getKessanData.php"));
    EXPECT_NE(stampOf("customer/getNyusatsuSanka.php"), stampOf("customer/getNyusatsuKikan.php"));
    EXPECT_EQ(stampOf("customer/getCompShokuin.php"), "") << "never written";
    EXPECT_EQ(stampOf("prefcust/99/getIninMain.php"), stampOf("prefcust/99/getIninSub.php"))
        << "the form's stamp is the later of main and sub";
    EXPECT_NE(stampOf("prefcust/99/getKikaiIchiranMain.php"),
              stampOf("prefcust/99/getKikaiIchiranSub.php"))
        << "a machinery list's main and machines keep stamps of their own";
    EXPECT_STREQ(item.child("RecordUpdate12").text().get(), "") << "no server data";
}

TEST_F(ServerTest, KihonUploadWithTheClientsKeysReadsBackUnderTheRecordsTags) {
    Login u = LogIn();
    CreateCustomer(u, 8);
    // The key spellings of the customer upload, with raw "&", "=" and "<" in values.
    std::string body =
        "CustomerID=8&Code=A&1&AcDate=3月31日&ZipCode0=100&ZipCode1=0001&addr0=東京都&"
        "addr1=千代田区=1&addr2=<丸の内>&TZipCode0=&TZipCode1=&Taddr0=t0&Taddr1=&Taddr2=&"
        "CorpKana0=カブ&CorpName0=株式会社A&B&CorpKanaS=A&CorpKana1=12&CorpName1=&Post0=代表&"
        "Post1=&ApfKana0=&ApfName0=申請者&ApfKana1=&ApfName1=&tel0=03&tel1=1234&tel2=5678&"
        "fax0=03&fax1=1111&fax2=2222&other7=o7&ExOther17=5&UserStaffID=3&DataUpdateFlag=3&"
        "PApDate=2024/01/02 03:04:05&CheckEx=1&Manage=2&";
    Reply set = Call(u, "customer/setCompKihon.php", body);
    ASSERT_EQ(set.Flags(), 1) << set.text;
    Reply r = Call(u, "customer/getCompKihon.php", "CustomerID=8&");
    auto c = r.Payload("Customer");
    EXPECT_STREQ(c.child("CustomerID").text().get(), "8");
    EXPECT_FALSE(std::string(c.child("RecordUpdate").text().get()).empty());
    const Item kihon = ChildrenOf(c.child("CompKihon"));
    // The fifteen tags a main read requires.
    for (const char* tag :
         {"AcDate", "ZipCode0", "ZipCode1", "Addr0", "addr1", "Addr2", "CorpName0", "ApfName0",
          "Tel0", "TEL1", "TEL2", "Fax0", "FAX1", "FAX2", "ExOther17"})
        EXPECT_TRUE(kihon.count(Upper(tag))) << tag;
    EXPECT_EQ(kihon.at("CODE"), "A&1");
    EXPECT_EQ(kihon.at("ADDR0"), "東京都");
    EXPECT_EQ(kihon.at("ADDR1"), "千代田区=1");
    EXPECT_EQ(kihon.at("ADDR2"), "<丸の内>");
    EXPECT_EQ(kihon.at("TADDR0"), "t0");
    EXPECT_EQ(kihon.at("CORPNAME0"), "株式会社A&B");
    EXPECT_EQ(kihon.at("OTHER7"), "o7");
    EXPECT_EQ(kihon.at("DATAUPDATEFLAG"), "3");
    EXPECT_EQ(kihon.at("PAPDATE"), "2024/01/02 03:04:05");
    EXPECT_EQ(kihon.at("MANAGE"), "2");
    EXPECT_EQ(kihon.at("EXOTHER4"), "") << "unsent fields are present and empty";

    // Partial updates change only what they carry.
    Call(u, "customer/setCompKihon.php", "CustomerID=8&KanriNendoNyusatsu=2024&");
    Call(u, "customer/setCompKihon.php", "CustomerID=8&Code=B2&");
    const Item after = ChildrenOf(Call(u, "customer/getCompKihon.php", "CustomerID=8&")
                                      .Payload("Customer")
                                      .child("CompKihon"));
    EXPECT_EQ(after.at("CODE"), "B2");
    EXPECT_EQ(after.at("ADDR0"), "東京都");
}

TEST_F(ServerTest, CodeOrAgencyYearAloneLeaveTheRecordStampWhereNoReaderLooks) {
    Login u = LogIn();
    CreateCustomer(u, 9);
    ASSERT_EQ(Call(u, "customer/setCompKihon.php", "CustomerID=9&CorpName0=旧&MinName=M&").Flags(),
              1);
    const auto stampOf = [&](const char* path) {
        return std::string(
            Call(u, path, "CustomerID=9&").Payload("Customer").child("RecordUpdate").text().get());
    };
    const std::string kihon = stampOf("customer/getCompKihon.php");
    const std::string gyoshu = stampOf("customer/getCompGyoshu.php");
    ASSERT_FALSE(kihon.empty());
    clock_->Advance(2min);
    // The code travels with the roster and the agency year only upward: a moved stamp here
    // would show the local record as changed on both sides.
    ASSERT_EQ(Call(u, "customer/setCompKihon.php", "CustomerID=9&Code=NEW&").Flags(), 1);
    ASSERT_EQ(Call(u, "customer/setCompKihon.php", "CustomerID=9&KanriNendoNyusatsu=2025&").Flags(),
              1);
    EXPECT_EQ(stampOf("customer/getCompKihon.php"), kihon);
    EXPECT_EQ(stampOf("customer/getCompGyoshu.php"), gyoshu);
    const Reply list = Call(u, "customer/getCompList.php", "");  // the node lives in its document
    auto item = list.Payload("compList").child("compItem");
    EXPECT_STREQ(item.child("Code").text().get(), "NEW");
    EXPECT_EQ(item.child("RecordUpdate0").text().get(), kihon);
    EXPECT_EQ(ChildrenOf(Call(u, "customer/getCompKihon.php", "CustomerID=9&")
                             .Payload("Customer")
                             .child("CompKihon"))
                  .at("CODE"),
              "NEW");

    ASSERT_EQ(Call(u, "customer/setCompKihon.php", "CustomerID=9&Code=N2&CorpName0=新&").Flags(),
              1);
    EXPECT_GT(stampOf("customer/getCompKihon.php"), kihon) << "a compared field moves it";
}

TEST_F(ServerTest, AddingACustomerThatExistsKeepsItsKanaNameAndStamp) {
    Login u = LogIn();
    CreateCustomer(u, 10);
    ASSERT_EQ(Call(u, "customer/setCompKihon.php", "CustomerID=10&CorpKana0=カブシキガイシャエー&")
                  .Flags(),
              1);
    const auto stamp = [&] {
        return std::string(Call(u, "customer/getCompKihon.php", "CustomerID=10&")
                               .Payload("Customer")
                               .child("RecordUpdate")
                               .text()
                               .get());
    };
    const std::string before = stamp();
    clock_->Advance(2min);
    // The add carries the short kana under the kana name's key.
    ASSERT_EQ(Call(u, "customer/createCompKihon.php",
                   "CustomerID=10&Code=C10&CorpName0=エー&CorpKanaS=エー&CorpKana0=エー&", "id")
                  .Flags(),
              1);
    const auto after = ChildrenOf(Call(u, "customer/getCompKihon.php", "CustomerID=10&")
                                      .Payload("Customer")
                                      .child("CompKihon"));
    EXPECT_EQ(after.at("CORPKANA0"), "カブシキガイシャエー");
    EXPECT_EQ(after.at("CORPNAME0"), "エー");
    EXPECT_EQ(after.at("CORPKANAS"), "エー");
    EXPECT_EQ(after.at("CODE"), "C10");
    EXPECT_EQ(stamp(), before);
}

TEST_F(ServerTest, DelegationFormWithoutAMainRowIsAcceptedAndReadsAsEmpty) {
    Login u = LogIn();
    CreateCustomer(u, 11);
    ASSERT_EQ(Call(u, "prefcust/99/setIninMain.php",
                   "CustomerID=11&IninMainItemID=4&vno=1&MakeDate=&SubShokuin=s&SelectDetail=1&"
                   "SelectSubShokuin=0&PrintDate=0&PrintSubShokuin=0&")
                  .Flags(),
              1);
    // A form whose main row is gone locally: the main post carries an empty item ID.
    Reply set = Call(u, "prefcust/99/setIninMain.php",
                     "CustomerID=11&IninMainItemID=&vno=&MakeDate=&SubShokuin=&SelectDetail=&"
                     "SelectSubShokuin=&PrintDate=&PrintSubShokuin=&");
    ASSERT_EQ(set.Flags(), 1) << set.text;
    ASSERT_EQ(Call(u, "prefcust/99/setIninSub.php",
                   "CustomerID=11&IninSubItemID=1&DISABLEDALL=DISABLEDALL&vno=1&IninTitle=t&"
                   "IninDetail0=&IninDetail1=&IninDetail2=&IninDetail3=&")
                  .Flags(),
              1);
    Reply main = Call(u, "prefcust/99/getIninMain.php", "CustomerID=11&");
    auto mainList = ReadList(main, "Customer", "IninMain", {});
    ASSERT_TRUE(mainList) << main.text;
    EXPECT_TRUE(mainList->empty()) << "the server holds what the office holds: no main row";
    auto subs = ReadList(Call(u, "prefcust/99/getIninSub.php", "CustomerID=11&"), "Customer",
                         "IninSub", {"vno", "IninTitle", "IninDetail3"});
    ASSERT_TRUE(subs);
    EXPECT_EQ(subs->size(), 1u);
    EXPECT_EQ(Call(u, "customer/setMemo.php", "CustomerID=11&History=h&").Flags(), -1)
        << "other lists still need an item ID";
}

TEST_F(ServerTest, MainPageAddsStaffCountAndDetailsCarryOneCombinedStamp) {
    Login u = LogIn();
    CreateCustomer(u, 2);
    Call(u, "customer/setCompShokuin.php",
         "CustomerID=2&ShokuinItemID=1&DISABLEDALL=DISABLEDALL&name1=a&vno=1&");
    Call(u, "customer/setCompShokuin.php", "CustomerID=2&ShokuinItemID=2&name1=b&vno=2&");
    clock_->Advance(1min);
    Call(u, "customer/setEigyosho.php",
         "CustomerID=2&EigyoshoItemID=4&DISABLEDALL=DISABLEDALL&MainEigyo=1&Name=本店&vno=1&");

    Reply main = Call(u, "customer/getCompKihonMain.php", "CustomerID=2&");
    auto staff = main.Payload("Customer").child("ShokuinList");
    EXPECT_STREQ(staff.child("ShokuinCount").text().get(), "2");
    EXPECT_FALSE(staff.child("RecordUpdate")) << "it would override the record's stamp";

    Reply details = Call(u, "customer/getCompDetails.php", "CustomerID=2&");
    auto c = details.Payload("Customer");
    for (const char* part : {"CompKihon", "Gyoshu", "ShokuinList", "EigyoshoList"})
        EXPECT_TRUE(c.child(part)) << part;
    auto stamps = c.select_nodes(".//RecordUpdate");
    ASSERT_EQ(stamps.size(), 1u);
    Reply offices = Call(u, "customer/getEigyosho.php", "CustomerID=2&");
    EXPECT_STREQ(
        stamps.first().node().text().get(),
        offices.Payload("Customer").child("EigyoshoList").child("RecordUpdate").text().get())
        << "the latest of the four";
    EXPECT_TRUE(ReadList(details, "Customer", "Shokuin", {"Name1"}));
    EXPECT_EQ(ReadList(details, "Customer", "Eigyosho", {"MainEigyo", "Name"})->size(), 1u);
}

TEST_F(ServerTest, StaffUploadKeysRoundTripAndDisabledAllReplacesTheList) {
    Login u = LogIn();
    CreateCustomer(u, 3);
    std::string person =
        "no=7&name1=山田&name2=太郎&fname1=ﾔﾏﾀﾞ&fname2=ﾀﾛｳ&BirthDate=S50/01/02&SaiyoDate=&"
        "sikakucode1=5A&gyoshucode1=3&kofucode=&seibetu=1&Yakushoku=&school=&senko=&"
        "LicenceName1=L&LicenceDate1=H01/02/03&keireki=k&jitumunen1=3&shokushu=s&biko=b&"
        "bunrui16=z&eigyosho=本店&jokin=常勤&addr=a&other10=o&vno=1&SenninGyosyuN=01&"
        "SenninGyosyu=02&SenninSikakuCode=0304&";
    Call(u, "customer/setCompShokuin.php",
         "CustomerID=3&ShokuinItemID=11&DISABLEDALL=DISABLEDALL&" + person);
    Call(u, "customer/setCompShokuin.php", "CustomerID=3&ShokuinItemID=12&name1=二人目&vno=2&");
    const std::vector<std::string> tags{
        "No",           "Name1",           "Name2",        "FName1",       "FName2",
        "BirthDate",    "SaiyoDate",       "SikakuCode10", "GyoshuCode2",  "KofuCode",
        "Seibetu",      "School",          "Senko",        "LicenceName5", "licencedate1",
        "Keireki",      "JitumuNen4",      "shokushu",     "Biko",         "Bunrui16",
        "EigyoSho",     "Jokin",           "Addr",         "Other10",      "SenninGyosyuN",
        "SenninGyosyu", "SenninSikakuCode"};
    auto items = ReadList(Call(u, "customer/getCompShokuin.php", "CustomerID=3&"), "Customer",
                          "Shokuin", tags);
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 2u);
    const auto& first = (*items)[0];
    EXPECT_EQ(first.at("SHOKUINITEMID"), "11");
    EXPECT_EQ(first.at("FNAME1"), "ﾔﾏﾀﾞ");
    EXPECT_EQ(first.at("LICENCEDATE1"), "H01/02/03");
    EXPECT_EQ(first.at("JOKIN"), "常勤");
    EXPECT_EQ(first.at("SENNINGYOSYUN"), "01");
    EXPECT_EQ(first.at("SENNINGYOSYU"), "02");
    EXPECT_EQ((*items)[1].at("NAME1"), "二人目");

    // A new upload starts with DISABLEDALL: the server list is what was sent, in order.
    Call(u, "customer/setCompShokuin.php",
         "CustomerID=3&ShokuinItemID=12&DISABLEDALL=DISABLEDALL&name1=残り&vno=1&");
    items = ReadList(Call(u, "customer/getCompShokuin.php", "CustomerID=3&"), "Customer", "Shokuin",
                     tags);
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 1u);
    EXPECT_EQ((*items)[0].at("NAME1"), "残り");
}

TEST_F(ServerTest, EveryDeclaredListKindRoundTripsItsItems) {
    Login u = LogIn();
    CreateCustomer(u, 6);
    const auto& cat = TheCatalogue();
    for (const auto& page : cat.SetPages()) {
        const auto& store = *cat.Store(page.targets.front().store);
        if (!store.list) continue;
        const std::string getPath = [&] {
            std::string p = page.path;
            p.replace(p.find("/set"), 4, "/get");
            return p;
        }();
        std::string start;
        if (page.scope != Scope::Office) start += "CustomerID=6&";
        if (page.scope == Scope::CustomerDataFile) start += "DataFileID=12.5&DataFileType=1&";
        const int items = store.singleItem ? 1 : 2;
        for (int n = 1; n <= items; ++n) {
            std::string body = start + store.ItemIdKey() + "=" + std::to_string(100 + n) + "&";
            if (n == 1) body += "DISABLEDALL=DISABLEDALL&";
            for (const auto& f : store.fields)
                body += f + "=" +
                        (f == "vno" || f == "LocalIndex" ? std::to_string(n)
                                                         : f + "<&>" + std::to_string(n)) +
                        "&";
            Reply set = Call(u, page.path, body);
            ASSERT_EQ(set.Flags(), 1) << page.path << "\n" << set.text;
        }
        Reply got = Call(u, getPath, start);
        ASSERT_EQ(got.Flags(), 1) << getPath;
        auto list = ReadList(got, page.scope == Scope::Office ? "Master" : "Customer", store.stem,
                             store.fields);
        ASSERT_TRUE(list) << getPath << "\n" << got.text;
        ASSERT_EQ(list->size(), static_cast<std::size_t>(items)) << getPath;
        EXPECT_FALSE(std::string(got.Payload(page.scope == Scope::Office ? "Master" : "Customer")
                                     .child((store.stem + "List").c_str())
                                     .child("RecordUpdate")
                                     .text()
                                     .get())
                         .empty())
            << getPath;
        for (int n = 1; n <= items; ++n) {
            const auto& item = (*list)[static_cast<std::size_t>(n - 1)];
            EXPECT_EQ(item.at(Upper(store.ItemIdKey())), std::to_string(100 + n));
            for (const auto& f : store.fields) {
                if (f != "vno" && f != "LocalIndex") {
                    EXPECT_EQ(item.at(Upper(f)), f + "<&>" + std::to_string(n)) << getPath;
                }
            }
        }
        EXPECT_EQ(page.scope == Scope::Office, !got.Payload("Customer"));
        EXPECT_EQ(
            page.scope == Scope::Office,
            !got.Payload(page.scope == Scope::Office ? "Master" : "Customer").child("CustomerID"));
    }
}

TEST_F(ServerTest, GyoshuPageSendsHeaderAndGridUnderTheGridsOwnStamp) {
    Login u = LogIn();
    CreateCustomer(u, 4);
    std::string body = "CustomerID=4&ApfPlace=P&MinName=M&PmtDate0=2024/01/01&";
    for (int i = 1; i <= 31; ++i)
        body += "EPmtCheck" + std::to_string(i) + "=" + std::to_string(i % 3) + "&";
    ASSERT_EQ(Call(u, "customer/setCompGyoshu.php", body).Flags(), 1);
    Reply r = Call(u, "customer/getCompGyoshu.php", "CustomerID=4&");
    auto c = r.Payload("Customer");
    EXPECT_STREQ(c.child("CompKihon").child("ApfPlace").text().get(), "P");
    EXPECT_FALSE(c.child("CompKihon").child("Code")) << "only the permit header";
    const Item grid = ChildrenOf(c.child("Gyoshu"));
    EXPECT_EQ(grid.size(), 62u);
    EXPECT_EQ(grid.at("EPMTCHECK31"), "1");
    EXPECT_EQ(grid.at("EPMTDATE7"), "");
    const std::string before = c.child("RecordUpdate").text().get();
    clock_->Advance(1min);
    Call(u, "customer/setCompKihon.php", "CustomerID=4&MinName=M2&");
    Reply again = Call(u, "customer/getCompGyoshu.php", "CustomerID=4&");
    EXPECT_STREQ(again.Payload("Customer").child("CompKihon").child("MinName").text().get(), "M2");
    // The header moved with the main record, whose own stamp tells the offices; a grid that
    // looked newer here would be taken over an office's unsent grid.
    EXPECT_EQ(std::string(again.Payload("Customer").child("RecordUpdate").text().get()), before);
    CreateCustomer(u, 5);
    ASSERT_EQ(Call(u, "customer/setCompKihon.php", "CustomerID=5&MinName=M&").Flags(), 1);
    EXPECT_STREQ(Call(u, "customer/getCompGyoshu.php", "CustomerID=5&")
                     .Payload("Customer")
                     .child("RecordUpdate")
                     .text()
                     .get(),
                 "")
        << "a grid never written has no stamp";
}

TEST_F(ServerTest, MachineryListsAreKeptPerDataFile) {
    Login u = LogIn();
    CreateCustomer(u, 7);
    const auto post = [&](const std::string& scope, const std::string& rest) {
        return Call(u, "prefcust/99/setKikaiIchiranSub.php", "CustomerID=7&" + scope + rest);
    };
    post("DataFileID=1&DataFileType=1&",
         "KikaiIchiranSubItemID=1&DISABLEDALL=DISABLEDALL&Maker=A&");
    post("DataFileID=1&DataFileType=2&",
         "KikaiIchiranSubItemID=1&DISABLEDALL=DISABLEDALL&Maker=B&");
    // An upload without machines sends DISABLEDALL alone: it empties only its own list.
    EXPECT_EQ(post("DataFileID=1&DataFileType=2&", "DISABLEDALL=DISABLEDALL&").Flags(), 1);
    auto one = ReadList(
        Call(u, "prefcust/99/getKikaiIchiranSub.php", "CustomerID=7&DataFileID=1&DataFileType=1&"),
        "Customer", "KikaiIchiranSub", {"Maker"});
    auto two = ReadList(
        Call(u, "prefcust/99/getKikaiIchiranSub.php", "CustomerID=7&DataFileID=1&DataFileType=2&"),
        "Customer", "KikaiIchiranSub", {"Maker"});
    ASSERT_TRUE(one && two);
    EXPECT_EQ(one->size(), 1u);
    EXPECT_EQ(two->size(), 0u);
    EXPECT_EQ(post("DataFileID=1&DataFileType=3&", "DISABLEDALL=DISABLEDALL&").Flags(), -1);
}

TEST_F(ServerTest, DeletedCustomerLeavesTheRosterWithItsData) {
    Login u = LogIn();
    CreateCustomer(u, 1);
    Call(u, "customer/setMemo.php", "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=h&");
    ASSERT_EQ(Call(u, "customer/deleteCompKihon.php", "CustomerID=1&", "id").Flags(), 1);
    EXPECT_EQ(Call(u, "customer/deleteCompKihon.php", "CustomerID=1&", "id").Flags(), 1)
        << "deleting a customer that is gone is done, not a failure";
    EXPECT_EQ(Call(u, "customer/deleteCompKihon.php", "CustomerID=77&", "id").Flags(), 1);
    EXPECT_EQ(
        Call(u, "customer/setInetEnableFlag.php", "CustomerID=1&InetEnableFlag=1&", "id").Flags(),
        -1)
        << "a flag for a customer that is gone stays a failure";
    EXPECT_STREQ(
        Call(u, "customer/getCompList.php", "").Payload("compList").child("CompCount").text().get(),
        "0");
    EXPECT_EQ(Call(u, "customer/getMemo.php", "CustomerID=1&").Flags(), -1);
    CreateCustomer(u, 1);
    auto memos = ReadList(Call(u, "customer/getMemo.php", "CustomerID=1&"), "Customer", "Memo", {});
    ASSERT_TRUE(memos);
    EXPECT_TRUE(memos->empty()) << "a new customer under an old number starts empty";
}

TEST_F(ServerTest, EnableFlagsRespectTheAccountsLimit) {
    Login u = LogIn();
    for (int id = 1; id <= 4; ++id) CreateCustomer(u, id);  // the account may back up 3
    Reply roster = Call(u, "customer/getCompList.php", "");
    std::vector<std::string> flags;
    for (auto item : roster.Payload("compList").children("compItem"))
        flags.push_back(item.child("InetEnableFlag").text().get());
    EXPECT_EQ(flags, (std::vector<std::string>{"1", "1", "1", "0"}));
    EXPECT_EQ(
        Call(u, "customer/setInetEnableFlag.php", "CustomerID=4&InetEnableFlag=1&", "id").Flags(),
        -1);
    EXPECT_EQ(
        Call(u, "customer/setInetEnableFlag.php", "CustomerID=1&InetEnableFlag=0&", "id").Flags(),
        1);
    EXPECT_EQ(
        Call(u, "customer/setInetEnableFlag.php", "CustomerID=4&InetEnableFlag=1&", "id").Flags(),
        1);
    EXPECT_EQ(
        Call(u, "customer/setInetEnableFlag.php", "CustomerID=4&InetEnableFlag=7&", "id").Flags(),
        -1);
}

}  // namespace
}  // namespace morvane::server::testing

namespace morvane::server::testing {
namespace {

TEST_F(ServerTest, FormBodiesLongerThanCommonFormLimitsAreAccepted) {
    Login u = LogIn();
    CreateCustomer(u, 1);
    const std::string career(40000, 'k');
    Reply set =
        Call(u, "customer/setCompShokuin.php",
             "CustomerID=1&ShokuinItemID=1&DISABLEDALL=DISABLEDALL&keireki=" + career + "&vno=1&");
    ASSERT_EQ(set.Flags(), 1) << set.text;
    Reply got = Call(u, "customer/getCompShokuin.php", "CustomerID=1&");
    EXPECT_EQ(std::string(got.Payload("Customer")
                              .child("ShokuinList")
                              .child("ShokuinItem")
                              .child("Keireki")
                              .text()
                              .get()),
              career);
}

}  // namespace
}  // namespace morvane::server::testing
