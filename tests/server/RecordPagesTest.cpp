// The roster and the record and list pages of every kind, read the way the client reads them.
#include <optional>
#include <set>

#include "ServerFixture.h"
#include "server/records/Kinds.h"

namespace morvane::server::testing {
namespace {

using namespace std::chrono_literals;
using Item = std::map<std::string, std::string>;

std::string upper(std::string s) {
    for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

// Children of `node` by upper-cased tag name (the client matches tags without case).
Item childrenOf(pugi::xml_node node) {
    Item out;
    for (auto child : node.children()) out[upper(child.name())] = child.text().get();
    return out;
}

// A list as the client reads it: the payload element by exact name, items kept only when every
// required tag is there, and the list good only when the kept items number the count tag.
std::optional<std::vector<Item>> readList(const Reply& r, const char* root, const std::string& stem,
                                          const std::vector<std::string>& tags) {
    auto list = r.payload(root).child((stem + "List").c_str());
    if (!list) return std::nullopt;
    std::vector<Item> items;
    long count = -1;
    for (auto child : list.children()) {
        if (upper(child.name()) == upper(stem + "Count")) count = std::stol(child.text().get());
        if (upper(child.name()) != upper(stem + "Item")) continue;
        Item item = childrenOf(child);
        bool complete = item.count(upper(stem + "ItemID")) > 0;
        for (const auto& tag : tags) complete = complete && item.count(upper(tag)) > 0;
        if (complete) items.push_back(std::move(item));
    }
    if (count != static_cast<long>(items.size())) return std::nullopt;
    return items;
}

TEST_F(ServerTest, RosterListsCustomersAscendingWithAll53StampsEmptyAtCreation) {
    Login u = login();
    for (int id : {30, 4, 17}) createCustomer(u, id, "C" + std::to_string(id));
    Reply r = call(u, "customer/getCompList.php", "");
    auto list = r.payload("compList");
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
    Login u = login();
    createCustomer(u, 5);
    call(u, "customer/setCompKihon.php", "CustomerID=5&Code=NEW&");
    clock_->advance(5s);
    call(u, "customer/setCompGyoshu.php", "CustomerID=5&EPmtCheck1=1&");
    clock_->advance(5s);
    call(u, "customer/setKessanData.php",
         "CustomerID=5&KessanDataItemID=1&DISABLEDALL=DISABLEDALL&RecDate=2024/01/01&vno=1&");
    clock_->advance(5s);
    call(u, "prefcust/99/setIninSub.php",
         "CustomerID=5&IninSubItemID=1&DISABLEDALL=DISABLEDALL&vno=1&IninTitle=t&");

    Reply roster = call(u, "customer/getCompList.php", "");
    auto item = roster.payload("compList").child("compItem");
    EXPECT_STREQ(item.child("Code").text().get(), "NEW") << "the roster follows the record";
    const auto stampOf = [&](const std::string& path) {
        Reply r = call(u, path, "CustomerID=5&");
        auto c = r.payload("Customer");
        std::string last;
        for (auto node : c.select_nodes(".//RecordUpdate")) last = node.node().text().get();
        return last;
    };
    const std::map<int, std::string> pages{
        {0, "customer/getCompKihon.php"},    {2, "customer/getCompGyoshu.php"},
        {4, "customer/getKessanData.php"},   {6, "customer/getCompShokuin.php"},
        {31, "prefcust/99/getIninMain.php"}, {32, "prefcust/99/getIninSub.php"}};
    for (const auto& [index, path] : pages)
        EXPECT_EQ(item.child(("RecordUpdate" + std::to_string(index)).c_str()).text().get(),
                  stampOf(path))
            << path;
    EXPECT_NE(stampOf("customer/getCompKihon.php"), stampOf("customer/getKessanData.php"));
    EXPECT_EQ(stampOf("customer/getCompShokuin.php"), "") << "never written";
    EXPECT_EQ(stampOf("prefcust/99/getIninMain.php"), stampOf("prefcust/99/getIninSub.php"))
        << "the form's stamp is the later of main and sub";
    EXPECT_STREQ(item.child("RecordUpdate12").text().get(), "") << "no server data";
}

TEST_F(ServerTest, KihonUploadWithTheClientsKeysReadsBackUnderTheRecordsTags) {
    Login u = login();
    createCustomer(u, 8);
    // The key spellings of the customer upload, with raw "&", "=" and "<" in values.
    std::string body =
        "CustomerID=8&Code=A&1&AcDate=3月31日&ZipCode0=100&ZipCode1=0001&addr0=東京都&"
        "addr1=千代田区=1&addr2=<丸の内>&TZipCode0=&TZipCode1=&Taddr0=t0&Taddr1=&Taddr2=&"
        "CorpKana0=カブ&CorpName0=株式会社A&B&CorpKanaS=A&CorpKana1=12&CorpName1=&Post0=代表&"
        "Post1=&ApfKana0=&ApfName0=申請者&ApfKana1=&ApfName1=&tel0=03&tel1=1234&tel2=5678&"
        "fax0=03&fax1=1111&fax2=2222&other7=o7&ExOther17=5&UserStaffID=3&DataUpdateFlag=3&"
        "PApDate=2024/01/02 03:04:05&CheckEx=1&Manage=2&";
    Reply set = call(u, "customer/setCompKihon.php", body);
    ASSERT_EQ(set.flags(), 1) << set.text;
    Reply r = call(u, "customer/getCompKihon.php", "CustomerID=8&");
    auto c = r.payload("Customer");
    EXPECT_STREQ(c.child("CustomerID").text().get(), "8");
    EXPECT_FALSE(std::string(c.child("RecordUpdate").text().get()).empty());
    const Item kihon = childrenOf(c.child("CompKihon"));
    // The fifteen tags a main read requires.
    for (const char* tag :
         {"AcDate", "ZipCode0", "ZipCode1", "Addr0", "addr1", "Addr2", "CorpName0", "ApfName0",
          "Tel0", "TEL1", "TEL2", "Fax0", "FAX1", "FAX2", "ExOther17"})
        EXPECT_TRUE(kihon.count(upper(tag))) << tag;
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
    call(u, "customer/setCompKihon.php", "CustomerID=8&KanriNendoNyusatsu=2024&");
    call(u, "customer/setCompKihon.php", "CustomerID=8&Code=B2&");
    const Item after = childrenOf(call(u, "customer/getCompKihon.php", "CustomerID=8&")
                                      .payload("Customer")
                                      .child("CompKihon"));
    EXPECT_EQ(after.at("CODE"), "B2");
    EXPECT_EQ(after.at("ADDR0"), "東京都");
}

TEST_F(ServerTest, MainPageAddsStaffCountAndDetailsCarryOneCombinedStamp) {
    Login u = login();
    createCustomer(u, 2);
    call(u, "customer/setCompShokuin.php",
         "CustomerID=2&ShokuinItemID=1&DISABLEDALL=DISABLEDALL&name1=a&vno=1&");
    call(u, "customer/setCompShokuin.php", "CustomerID=2&ShokuinItemID=2&name1=b&vno=2&");
    clock_->advance(1min);
    call(u, "customer/setEigyosho.php",
         "CustomerID=2&EigyoshoItemID=4&DISABLEDALL=DISABLEDALL&MainEigyo=1&Name=本店&vno=1&");

    Reply main = call(u, "customer/getCompKihonMain.php", "CustomerID=2&");
    auto staff = main.payload("Customer").child("ShokuinList");
    EXPECT_STREQ(staff.child("ShokuinCount").text().get(), "2");
    EXPECT_FALSE(staff.child("RecordUpdate")) << "it would override the record's stamp";

    Reply details = call(u, "customer/getCompDetails.php", "CustomerID=2&");
    auto c = details.payload("Customer");
    for (const char* part : {"CompKihon", "Gyoshu", "ShokuinList", "EigyoshoList"})
        EXPECT_TRUE(c.child(part)) << part;
    auto stamps = c.select_nodes(".//RecordUpdate");
    ASSERT_EQ(stamps.size(), 1u);
    Reply offices = call(u, "customer/getEigyosho.php", "CustomerID=2&");
    EXPECT_STREQ(
        stamps.first().node().text().get(),
        offices.payload("Customer").child("EigyoshoList").child("RecordUpdate").text().get())
        << "the latest of the four";
    EXPECT_TRUE(readList(details, "Customer", "Shokuin", {"Name1"}));
    EXPECT_EQ(readList(details, "Customer", "Eigyosho", {"MainEigyo", "Name"})->size(), 1u);
}

TEST_F(ServerTest, StaffUploadKeysRoundTripAndDisabledAllReplacesTheList) {
    Login u = login();
    createCustomer(u, 3);
    std::string person =
        "no=7&name1=山田&name2=太郎&fname1=ﾔﾏﾀﾞ&fname2=ﾀﾛｳ&BirthDate=S50/01/02&SaiyoDate=&"
        "sikakucode1=5A&gyoshucode1=3&kofucode=&seibetu=1&Yakushoku=&school=&senko=&"
        "LicenceName1=L&LicenceDate1=H01/02/03&keireki=k&jitumunen1=3&shokushu=s&biko=b&"
        "bunrui16=z&eigyosho=本店&jokin=常勤&addr=a&other10=o&vno=1&SenninGyosyuN=01&"
        "SenninGyosyu=02&SenninSikakuCode=0304&";
    call(u, "customer/setCompShokuin.php",
         "CustomerID=3&ShokuinItemID=11&DISABLEDALL=DISABLEDALL&" + person);
    call(u, "customer/setCompShokuin.php", "CustomerID=3&ShokuinItemID=12&name1=二人目&vno=2&");
    const std::vector<std::string> tags{
        "No",           "Name1",           "Name2",        "FName1",       "FName2",
        "BirthDate",    "SaiyoDate",       "SikakuCode10", "GyoshuCode2",  "KofuCode",
        "Seibetu",      "School",          "Senko",        "LicenceName5", "licencedate1",
        "Keireki",      "JitumuNen4",      "shokushu",     "Biko",         "Bunrui16",
        "EigyoSho",     "Jokin",           "Addr",         "Other10",      "SenninGyosyuN",
        "SenninGyosyu", "SenninSikakuCode"};
    auto items = readList(call(u, "customer/getCompShokuin.php", "CustomerID=3&"), "Customer",
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
    call(u, "customer/setCompShokuin.php",
         "CustomerID=3&ShokuinItemID=12&DISABLEDALL=DISABLEDALL&name1=残り&vno=1&");
    items = readList(call(u, "customer/getCompShokuin.php", "CustomerID=3&"), "Customer", "Shokuin",
                     tags);
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 1u);
    EXPECT_EQ((*items)[0].at("NAME1"), "残り");
}

TEST_F(ServerTest, EveryDeclaredListKindRoundTripsItsItems) {
    Login u = login();
    createCustomer(u, 6);
    const auto& cat = catalogue();
    for (const auto& page : cat.setPages()) {
        const auto& store = *cat.store(page.targets.front().store);
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
            std::string body = start + store.itemIdKey() + "=" + std::to_string(100 + n) + "&";
            if (n == 1) body += "DISABLEDALL=DISABLEDALL&";
            for (const auto& f : store.fields)
                body += f + "=" +
                        (f == "vno" || f == "LocalIndex" ? std::to_string(n)
                                                         : f + "<&>" + std::to_string(n)) +
                        "&";
            Reply set = call(u, page.path, body);
            ASSERT_EQ(set.flags(), 1) << page.path << "\n" << set.text;
        }
        Reply got = call(u, getPath, start);
        ASSERT_EQ(got.flags(), 1) << getPath;
        auto list = readList(got, page.scope == Scope::Office ? "Master" : "Customer", store.stem,
                             store.fields);
        ASSERT_TRUE(list) << getPath << "\n" << got.text;
        ASSERT_EQ(list->size(), static_cast<std::size_t>(items)) << getPath;
        EXPECT_FALSE(std::string(got.payload(page.scope == Scope::Office ? "Master" : "Customer")
                                     .child((store.stem + "List").c_str())
                                     .child("RecordUpdate")
                                     .text()
                                     .get())
                         .empty())
            << getPath;
        for (int n = 1; n <= items; ++n) {
            const auto& item = (*list)[static_cast<std::size_t>(n - 1)];
            EXPECT_EQ(item.at(upper(store.itemIdKey())), std::to_string(100 + n));
            for (const auto& f : store.fields) {
                if (f != "vno" && f != "LocalIndex") {
                    EXPECT_EQ(item.at(upper(f)), f + "<&>" + std::to_string(n)) << getPath;
                }
            }
        }
        EXPECT_EQ(page.scope == Scope::Office, !got.payload("Customer"));
        EXPECT_EQ(
            page.scope == Scope::Office,
            !got.payload(page.scope == Scope::Office ? "Master" : "Customer").child("CustomerID"));
    }
}

TEST_F(ServerTest, GyoshuPageSendsHeaderAndGridAndSeesHeaderChangesMadeElsewhere) {
    Login u = login();
    createCustomer(u, 4);
    std::string body = "CustomerID=4&ApfPlace=P&MinName=M&PmtDate0=2024/01/01&";
    for (int i = 1; i <= 31; ++i)
        body += "EPmtCheck" + std::to_string(i) + "=" + std::to_string(i % 3) + "&";
    ASSERT_EQ(call(u, "customer/setCompGyoshu.php", body).flags(), 1);
    Reply r = call(u, "customer/getCompGyoshu.php", "CustomerID=4&");
    auto c = r.payload("Customer");
    EXPECT_STREQ(c.child("CompKihon").child("ApfPlace").text().get(), "P");
    EXPECT_FALSE(c.child("CompKihon").child("Code")) << "only the permit header";
    const Item grid = childrenOf(c.child("Gyoshu"));
    EXPECT_EQ(grid.size(), 62u);
    EXPECT_EQ(grid.at("EPMTCHECK31"), "1");
    EXPECT_EQ(grid.at("EPMTDATE7"), "");
    const std::string before = c.child("RecordUpdate").text().get();
    clock_->advance(1min);
    call(u, "customer/setCompKihon.php", "CustomerID=4&MinName=M2&");
    Reply again = call(u, "customer/getCompGyoshu.php", "CustomerID=4&");
    EXPECT_STREQ(again.payload("Customer").child("CompKihon").child("MinName").text().get(), "M2");
    EXPECT_GT(std::string(again.payload("Customer").child("RecordUpdate").text().get()), before);
}

TEST_F(ServerTest, MachineryListsAreKeptPerDataFile) {
    Login u = login();
    createCustomer(u, 7);
    const auto post = [&](const std::string& scope, const std::string& rest) {
        return call(u, "prefcust/99/setKikaiIchiranSub.php", "CustomerID=7&" + scope + rest);
    };
    post("DataFileID=1&DataFileType=1&",
         "KikaiIchiranSubItemID=1&DISABLEDALL=DISABLEDALL&Maker=A&");
    post("DataFileID=1&DataFileType=2&",
         "KikaiIchiranSubItemID=1&DISABLEDALL=DISABLEDALL&Maker=B&");
    // An upload without machines sends DISABLEDALL alone: it empties only its own list.
    EXPECT_EQ(post("DataFileID=1&DataFileType=2&", "DISABLEDALL=DISABLEDALL&").flags(), 1);
    auto one = readList(
        call(u, "prefcust/99/getKikaiIchiranSub.php", "CustomerID=7&DataFileID=1&DataFileType=1&"),
        "Customer", "KikaiIchiranSub", {"Maker"});
    auto two = readList(
        call(u, "prefcust/99/getKikaiIchiranSub.php", "CustomerID=7&DataFileID=1&DataFileType=2&"),
        "Customer", "KikaiIchiranSub", {"Maker"});
    ASSERT_TRUE(one && two);
    EXPECT_EQ(one->size(), 1u);
    EXPECT_EQ(two->size(), 0u);
    EXPECT_EQ(post("DataFileID=1&DataFileType=3&", "DISABLEDALL=DISABLEDALL&").flags(), -1);
}

TEST_F(ServerTest, DeletedCustomerLeavesTheRosterWithItsData) {
    Login u = login();
    createCustomer(u, 1);
    call(u, "customer/setMemo.php", "CustomerID=1&MemoItemID=1&DISABLEDALL=DISABLEDALL&History=h&");
    ASSERT_EQ(call(u, "customer/deleteCompKihon.php", "CustomerID=1&", "id").flags(), 1);
    EXPECT_STREQ(
        call(u, "customer/getCompList.php", "").payload("compList").child("CompCount").text().get(),
        "0");
    EXPECT_EQ(call(u, "customer/getMemo.php", "CustomerID=1&").flags(), -1);
    createCustomer(u, 1);
    auto memos = readList(call(u, "customer/getMemo.php", "CustomerID=1&"), "Customer", "Memo", {});
    ASSERT_TRUE(memos);
    EXPECT_TRUE(memos->empty()) << "a new customer under an old number starts empty";
}

TEST_F(ServerTest, EnableFlagsRespectTheAccountsLimit) {
    Login u = login();
    for (int id = 1; id <= 4; ++id) createCustomer(u, id);  // the account may back up 3
    Reply roster = call(u, "customer/getCompList.php", "");
    std::vector<std::string> flags;
    for (auto item : roster.payload("compList").children("compItem"))
        flags.push_back(item.child("InetEnableFlag").text().get());
    EXPECT_EQ(flags, (std::vector<std::string>{"1", "1", "1", "0"}));
    EXPECT_EQ(
        call(u, "customer/setInetEnableFlag.php", "CustomerID=4&InetEnableFlag=1&", "id").flags(),
        -1);
    EXPECT_EQ(
        call(u, "customer/setInetEnableFlag.php", "CustomerID=1&InetEnableFlag=0&", "id").flags(),
        1);
    EXPECT_EQ(
        call(u, "customer/setInetEnableFlag.php", "CustomerID=4&InetEnableFlag=1&", "id").flags(),
        1);
    EXPECT_EQ(
        call(u, "customer/setInetEnableFlag.php", "CustomerID=4&InetEnableFlag=7&", "id").flags(),
        -1);
}

}  // namespace
}  // namespace morvane::server::testing

namespace morvane::server::testing {
namespace {

TEST_F(ServerTest, FormBodiesLongerThanCommonFormLimitsAreAccepted) {
    Login u = login();
    createCustomer(u, 1);
    const std::string career(40000, 'k');
    Reply set =
        call(u, "customer/setCompShokuin.php",
             "CustomerID=1&ShokuinItemID=1&DISABLEDALL=DISABLEDALL&keireki=" + career + "&vno=1&");
    ASSERT_EQ(set.flags(), 1) << set.text;
    Reply got = call(u, "customer/getCompShokuin.php", "CustomerID=1&");
    EXPECT_EQ(std::string(got.payload("Customer")
                              .child("ShokuinList")
                              .child("ShokuinItem")
                              .child("Keireki")
                              .text()
                              .get()),
              career);
}

}  // namespace
}  // namespace morvane::server::testing
