#include "server/records/Kinds.h"

#include <initializer_list>

namespace morvane::server {

namespace {

using Names = std::vector<std::string>;

// prefix + n for n in [from, to], zero-padded to `width` digits.
Names Numbered(const std::string& prefix, int from, int to, int width = 0) {
    Names out;
    for (int n = from; n <= to; ++n) {
        std::string digits = std::to_string(n);
        while (static_cast<int>(digits.size()) < width) digits.insert(digits.begin(), '0');
        out.push_back(prefix + digits);
    }
    return out;
}

Names Join(std::initializer_list<Names> parts) {
    Names out;
    for (const auto& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

const Names& GyoshuHeader() {
    static const Names names{"ApfPlace", "MinName", "MinCode",  "PmtCheck0", "PmtCheck1", "PmtYear",
                             "PmtNo",    "PApDate", "PmtDate0", "PmtDate1",  "PmtDate2"};
    return names;
}

Names KihonFields() {
    return Join({
        {"Code",      "AcDate",    "ZipCode0",  "ZipCode1", "Addr0",  "addr1",     "Addr2",
         "TZipCode0", "TZipCode1", "TAddr0",    "TAddr1",   "TAddr2", "CorpKana0", "CorpName0",
         "CorpKanaS", "CorpKana1", "CorpName1", "Post0",    "Post1",  "ApfKana0",  "ApfName0",
         "ApfKana1",  "ApfName1",  "Tel0",      "TEL1",     "TEL2",   "Fax0",      "FAX1",
         "FAX2",      "ChPost",    "ChKana",    "ChName"},
        Numbered("ChTel", 0, 2),
        Numbered("ChFax", 0, 2),
        {"ChEMail", "Other1", "Other2", "Other3", "Other4", "Other7", "Other5"},
        Numbered("ExOther", 4, 10),
        Numbered("ExOther", 12, 18),
        GyoshuHeader(),
        {"KessanTaioh", "AddrKana1", "AddrKana2", "HoKoType", "UserStaffID", "DataUpdateFlag",
         "SeturituDate", "SogyoDate", "KengyoExist", "KengyoNaiyo", "Itaku", "DMSendType",
         "SeireiShitei", "NotKanyo", "CheckEx", "Manage",
         // Sent up with the bidding agency list; kept with the record.
         "KanriNendoNyusatsu"},
    });
}

Names ShokuinFields() {
    return Join({
        {"No", "Name1", "Name2", "FName1", "FName2", "BirthDate", "SaiyoDate"},
        Numbered("SikakuCode", 1, 10),
        Numbered("GyoshuCode", 1, 2),
        {"KofuCode", "Seibetu", "Yakushoku", "School", "Senko"},
        Numbered("LicenceName", 1, 5),
        Numbered("licencedate", 1, 5),
        {"Keireki"},
        Numbered("JitumuNen", 1, 4),
        {"shokushu", "Biko"},
        Numbered("Bunrui", 1, 16),
        {"EigyoSho", "Jokin", "Addr"},
        Numbered("Other", 1, 10),
        {"SenninGyosyuN", "SenninGyosyu", "SenninSikakuCode"},
    });
}

Names KessanFields() {
    return Join({
        {"RecDate", "ExDate", "ScDate", "DataFile", "CheckEx", "Other", "CheckOther", "OtherDate1",
         "OtherDate2", "other1", "other2", "other3", "RegDate", "UpdateDate"},
        Numbered("AcPeriod", 0, 4),
        Numbered("AcDateS", 0, 4),
        Numbered("AcDateE", 0, 4),
        {"CheckSync"},
        Numbered("ZaimuType", 0, 4),
        Numbered("CalcWay", 0, 4),
        {"DefaultUse"},
        Numbered("ProfDate", 0, 4),
        {"DataFileID"},
    });
}

Names MasterNyusatsuKikanFields() {
    return Join({
        {"KikanCode", "KikanName", "ReceptionYear", "ValidityTerm", "ReceptionDateFrom",
         "ReceptionDateTo", "ReceptionTime1From", "ReceptionTime1To", "ReceptionTime2From",
         "ReceptionTime2To"},
        Numbered("ReceptionFlags", 0, 9),
        {"PresentationPlace", "PresentationNote", "DistributionDate", "DistributionPlace",
         "DistributionPlice", "DistributionNote", "ZipCode1", "ZipCode2", "Address", "Station"},
        Numbered("TEL", 1, 3),
        Numbered("FAX", 1, 3),
        {"Mail", "ApplicationPlace", "ApplicationName", "ApplicationNote"},
        Numbered("NeedDoc", 0, 99, 2),
        {"NeedDocOthers", "vno"},
    });
}

Names KikaiMainFields() {
    return {"vno",
            "CorpName0",
            "ApfName0",
            "Post0",
            "addr1",
            "ReviewDate",
            "MinCode",
            "PmtCheck0",
            "PmtCheck1",
            "PmtYear",
            "PmtNo",
            "PromiseDate",
            "ISO9001_Ninsho",
            "ISO9001_Office",
            "ISO9001_ConstOffice",
            "ISO9001_Gyoshu",
            "ISO9001_ValidStart",
            "ISO9001_ValidEnd",
            "ISO14001_Ninsho",
            "ISO14001_Office",
            "ISO14001_ConstOffice",
            "ISO14001_Gyoshu",
            "ISO14001_ValidStart",
            "ISO14001_ValidEnd",
            "SubmitDate"};
}

Names KikaiSubFields() {
    return Join({
        {"vno",
         "No",
         "MachineType",
         "MachineTypeStr",
         "Maker",
         "Model",
         "SerialNum",
         "ShoyuLease",
         "ShoyuLeaseStr",
         "GetDate",
         "LeaseStart",
         "LeaseEnd",
         "CheckDate",
         "JidoKoshin",
         "Attachment",
         "Weight",
         "Bucket",
         "ExpiryDate",
         "SelfCheck",
         "SelfCheckStr",
         "Biko",
         "JishuKensaKishu",
         "LeaseType",
         "Moushidesho",
         "ShubetsuKikaku",
         "Check",
         "TeitohoHani",
         "Abirity",
         "KikaiSonryoKubun"},
        Numbered("SonryoCode", 1, 3),
        {"HaiGas", "MachineName", "SelfCheckNo", "CheckTarget", "OnRoad", "UserName",
         "CheckCorpName", "CheckRecord", "CheckPromise", "TakePicDate", "MachineNum",
         "CheckSubmitPic", "GetDateNoDayFlag", "LeaseStartNoDayFlag", "LeaseEndNoDayFlag",
         "CheckDateNoDayFlag", "ExpiryDateNoDayFlag"},
    });
}

StoreDecl List(std::string name, Scope scope, std::string stem, std::string orderKey,
               Names fields) {
    StoreDecl s;
    s.name = std::move(name);
    s.scope = scope;
    s.list = true;
    s.stem = std::move(stem);
    s.orderKey = std::move(orderKey);
    s.fields = std::move(fields);
    return s;
}

SectionDecl ListSection(const std::string& store) {
    return {SectionDecl::Type::List, store, {}, {}};
}

}  // namespace

Catalogue::Catalogue() {
    using T = SectionDecl::Type;
    const Scope C = Scope::Customer;

    // Customer record kinds.
    stores_.push_back(
        {"Kihon", C, false, false, "", "", KihonFields(), {"Code", "KanriNendoNyusatsu"}});
    stores_.push_back({"Gyoshu",
                       C,
                       false,
                       false,
                       "",
                       "",
                       Join({Numbered("EPmtCheck", 1, 31), Numbered("EPmtDate", 1, 31)}),
                       {}});
    stores_.push_back(List("Shokuin", C, "Shokuin", "vno", ShokuinFields()));
    stores_.push_back(
        List("Eigyosho", C, "Eigyosho", "vno",
             Join({{"MainEigyo", "MainRendo", "Name", "Kana", "S_Code", "PrefName", "CityName",
                    "Address", "Yubin1", "Yubin2", "Tel1", "Tel2", "Tel3", "Gyosyu"},
                   Numbered("Reserved", 0, 10)})));
    stores_.push_back(List("Memo", C, "Memo", "vno",
                           {"History", "RegDate", "UpdateDate", "other1", "other2", "other3"}));
    stores_.push_back(List("NyusatsuKikan", C, "NyusatsuKikan", "LocalIndex",
                           Join({{"LocalIndex", "KikanName", "Kubun"}, Numbered("Nendo", 1, 10)})));
    stores_.push_back(List(
        "NyusatsuSanka", C, "NyusatsuSanka", "vno",
        {"KikanCode", "Effective", "Reservation", "Other", "DataFile", "CheckSync", "Other1"}));

    // Dated records.
    stores_.push_back(List("KessanData", C, "KessanData", "vno", KessanFields()));
    stores_.push_back(List("KyokaData", C, "KyokaData", "vno",
                           {"other", "PApDate", "AcPeriod", "AcDateS", "AcDateE", "DataFile",
                            "CheckSync", "DefaultUse", "Ver511HideFlag", "DataFileID"}));
    stores_.push_back(
        List("OtherData", C, "OtherData", "", {"DataFile", "RegDate", "UpdateDate", "other"}));

    // Prefecture forms.
    auto ininMain = List("IninMain", C, "IninMain", "",
                         {"vno", "MakeDate", "SubShokuin", "SelectDetail", "SelectSubShokuin",
                          "PrintDate", "PrintSubShokuin"});
    ininMain.singleItem = true;
    stores_.push_back(ininMain);
    stores_.push_back(List("IninSub", C, "IninSub", "",
                           Join({{"vno", "IninTitle"}, Numbered("IninDetail", 0, 3)})));
    auto kikaiMain = List("KikaiIchiranMain", Scope::CustomerDataFile, "KikaiIchiranMain", "",
                          KikaiMainFields());
    kikaiMain.singleItem = true;
    stores_.push_back(kikaiMain);
    stores_.push_back(
        List("KikaiIchiranSub", Scope::CustomerDataFile, "KikaiIchiranSub", "", KikaiSubFields()));

    // Office masters. Uploads always start with DISABLEDALL, so arrival order is list order.
    const std::vector<std::pair<std::string, Names>> masters{
        {"BunsekiKikan",
         {"KikanName", "DaihyoPost", "DaihyoName", "RegistNo", "RegistDateYear", "RegistDateMonth",
          "RegistDateDay", "Flag", "vno"}},
        {"KessanTaioh", {"Taioh", "Flag", "vno"}},
        {"Minister", {"ApfPlace", "MinName", "Flag", "vno"}},
        {"NyusatsuKikan", MasterNyusatsuKikanFields()},
        {"NyusatsuShorui", {"Name", "Visible", "vno"}},
        {"Sakuseisha",
         Join({{"ZipCode1", "ZipCode2", "Address", "Office", "Belong", "UserName", "UserNo"},
               Numbered("TEL", 1, 3),
               Numbered("FAX", 1, 3),
               {"Mail"},
               Numbered("Others", 1, 3)})},
        {"UserStaff",
         {"事務所職員コード", "事務所職員名", "郵便番号", "住所", "TEL", "FAX", "パスワード",
          "Flag"}},
        {"Yakushoku", {"Yakushoku", "Flag", "vno"}},
    };
    for (const auto& [stem, fields] : masters) {
        const std::string store = "master." + stem;
        stores_.push_back(List(store, Scope::Office, stem, "", fields));
        gets_.push_back(
            {"master/get" + stem + ".php", Scope::Office, {store}, false, {ListSection(store)}});
        sets_.push_back({"master/set" + stem + ".php", Scope::Office, {{store, {}}}});
    }

    // Customer record pages.
    gets_.push_back(
        {"customer/getCompKihon.php", C, {"Kihon"}, true, {{T::Record, "Kihon", "CompKihon", {}}}});
    gets_.push_back({"customer/getCompKihonMain.php",
                     C,
                     {"Kihon"},
                     true,
                     {{T::Record, "Kihon", "CompKihon", {}}, {T::CountOnly, "Shokuin", {}, {}}}});
    // The trades' stamp is the grid's own: the header travels with the main record too, and a
    // main record just uploaded must not make an empty grid look newer than the office's.
    gets_.push_back(
        {"customer/getCompGyoshu.php",
         C,
         {"Gyoshu"},
         true,
         {{T::Record, "Kihon", "CompKihon", GyoshuHeader()}, {T::Record, "Gyoshu", "Gyoshu", {}}}});
    gets_.push_back({"customer/getCompDetails.php",
                     C,
                     {"Kihon", "Gyoshu", "Shokuin", "Eigyosho"},
                     true,
                     {{T::Record, "Kihon", "CompKihon", {}},
                      {T::Record, "Gyoshu", "Gyoshu", {}},
                      ListSection("Shokuin"),
                      ListSection("Eigyosho")}});
    sets_.push_back({"customer/setCompKihon.php", C, {{"Kihon", {}}}});
    sets_.push_back({"customer/setCompGyoshu.php", C, {{"Kihon", GyoshuHeader()}, {"Gyoshu", {}}}});

    const std::vector<std::pair<std::string, std::string>> customerLists{
        {"Shokuin", "CompShokuin"},
        {"Eigyosho", "Eigyosho"},
        {"Memo", "Memo"},
        {"NyusatsuKikan", "NyusatsuKikan"},
        {"NyusatsuSanka", "NyusatsuSanka"},
        {"KessanData", "KessanData"},
        {"KyokaData", "KyokaData"},
        {"OtherData", "OtherData"},
    };
    for (const auto& [store, word] : customerLists) {
        gets_.push_back({"customer/get" + word + ".php", C, {store}, false, {ListSection(store)}});
        sets_.push_back({"customer/set" + word + ".php", C, {{store, {}}}});
    }

    // Delegation form: both replies carry the form's stamp, the later of main and sub.
    for (const std::string part : {"IninMain", "IninSub"}) {
        gets_.push_back({"prefcust/99/get" + part + ".php",
                         C,
                         {"IninMain", "IninSub"},
                         false,
                         {ListSection(part)}});
        sets_.push_back({"prefcust/99/set" + part + ".php", C, {{part, {}}}});
    }
    for (const std::string part : {"KikaiIchiranMain", "KikaiIchiranSub"}) {
        gets_.push_back({"prefcust/99/get" + part + ".php",
                         Scope::CustomerDataFile,
                         {part},
                         false,
                         {ListSection(part)}});
        sets_.push_back({"prefcust/99/set" + part + ".php", Scope::CustomerDataFile, {{part, {}}}});
    }

    const std::vector<std::pair<int, std::string>> roster{
        {0, "customer/getCompKihon.php"},
        {1, "customer/getEigyosho.php"},
        {2, "customer/getCompGyoshu.php"},
        {3, "customer/getMemo.php"},
        {4, "customer/getKessanData.php"},
        {5, "customer/getKyokaData.php"},
        {6, "customer/getCompShokuin.php"},
        {7, "customer/getNyusatsuSanka.php"},
        {8, "customer/getNyusatsuKikan.php"},
        {9, "customer/getOtherData.php"},
        {31, "prefcust/99/getIninMain.php"},
        {32, "prefcust/99/getIninSub.php"},
        {38, "prefcust/99/getKikaiIchiranMain.php"},
        {39, "prefcust/99/getKikaiIchiranSub.php"},
    };
    for (const auto& [index, path] : roster) roster_[static_cast<std::size_t>(index)] = path;
}

const StoreDecl* Catalogue::Store(const std::string& name) const {
    for (const auto& s : stores_)
        if (s.name == name) return &s;
    return nullptr;
}

const GetPageDecl* Catalogue::GetPage(const std::string& path) const {
    for (const auto& p : gets_)
        if (p.path == path) return &p;
    return nullptr;
}

const SetPageDecl* Catalogue::SetPage(const std::string& path) const {
    for (const auto& p : sets_)
        if (p.path == path) return &p;
    return nullptr;
}

const Catalogue& TheCatalogue() {
    static const Catalogue instance;
    return instance;
}

}  // namespace morvane::server
