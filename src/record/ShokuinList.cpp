#include "record/ShokuinList.h"

#include <string_view>

#include "lists/ListKinds.h"
#include "lists/NumberedNames.h"
#include "record/mdlConvertH28ShikakuCode.h"
#include "transport/mdlServerConst.h"

namespace morvane {
namespace {

using I = cCustKihonShokuinItem;
using F = record::ListField<I>;
using record::Cmp;

constexpr std::string_view kEraRead = "gee/MM/dd";
constexpr std::string_view kEraCompare = "gee/mm/dd";

// The numbered tags and keys, from 1.
constexpr auto kSikakuCode = record::Numbered<10, 16>("SikakuCode", 1, 1);
constexpr auto kSikakuCodeKey = record::Numbered<10, 16>("sikakucode", 1, 1);
constexpr auto kGyoshuCode = record::Numbered<2, 16>("GyoshuCode", 1, 1);
constexpr auto kGyoshuCodeKey = record::Numbered<2, 16>("gyoshucode", 1, 1);
constexpr auto kLicenceName = record::Numbered<5, 16>("LicenceName", 1, 1);
constexpr auto kLicenceDateTag = record::Numbered<5, 16>("licencedate", 1, 1);
constexpr auto kLicenceDateKey = record::Numbered<5, 16>("LicenceDate", 1, 1);
constexpr auto kJitumuNen = record::Numbered<4, 16>("JitumuNen", 1, 1);
constexpr auto kJitumuNenKey = record::Numbered<4, 16>("jitumunen", 1, 1);
constexpr auto kBunrui = record::Numbered<16, 16>("Bunrui", 1, 1);
constexpr auto kBunruiKey = record::Numbered<16, 16>("bunrui", 1, 1);
constexpr auto kOther = record::Numbered<10, 16>("Other", 1, 1);
constexpr auto kOtherKey = record::Numbered<10, 16>("other", 1, 1);

// An era date: a date reads and loads as "gee/MM/dd", any other text as it stands.
F Era(std::string_view name, record::Slot<I> slot) {
    F f = F::Text(name, std::move(slot));
    f.row.conv = record::Conv::FormatIfDate;
    f.row.load = record::Load::FormatIfDate;
    f.row.loadFormat = kEraRead;
    f.row.cmp = Cmp::DateFormat;
    f.row.format = kEraCompare;
    return f;
}

F WithCmp(F f, Cmp cmp, std::string_view format = {}) {
    f.row.cmp = cmp;
    f.row.format = format;
    return f;
}

F Sennin(std::string_view name, std::string I::*member, size_t width) {
    return F::Text(name,
                   record::Slot<I>(member, [width](std::string v) { return PadSennin(v, width); }));
}

record::ListDecl<I> Build() {
    record::ListDecl<I> s;
    s.listTag = "ShokuinList";
    s.countTag = "ShokuinCount";
    s.itemTag = "ShokuinItem";
    s.itemIdTag = "ShokuinItemID";
    s.table = "tCustomerMeibo";
    s.walkOrder = " ORDER BY vno,id";
    s.strategy = record::RowStrategy::Own;
    s.vno = record::VnoPolicy::Position;
    s.vnoBeforeKey = "SenninGyosyuN";
    s.stampAtPayload = true;
    s.getPage = page::kGetCompShokuin;
    s.getRoutine = facade::Routine::Progress;
    s.setPage = page::kSetCompShokuin;
    s.emptyListPage = page::kSetCompShokuin;

    // In the order of the upload body.
    auto& r = s.fields;
    r.push_back(F::Text("No", &I::No).Key("no"));
    r.push_back(F::Text("Name1", {&I::Namae, 0}).Key("name1"));
    r.push_back(F::Text("Name2", {&I::Namae, 1}).Key("name2"));
    r.push_back(WithCmp(F::Text("FName1", {&I::Namae, 2}).Key("fname1"), Cmp::Widened));
    r.push_back(WithCmp(F::Text("FName2", {&I::Namae, 3}).Key("fname2"), Cmp::Widened));
    r.push_back(Era("BirthDate", &I::BirthDate));
    r.push_back(Era("SaiyoDate", &I::SaiyoDate));
    for (size_t i = 0; i < 10; ++i)
        r.push_back(F::Integer(kSikakuCode[i], {&I::SikakuCode, i}).Key(kSikakuCodeKey[i]));
    for (size_t i = 0; i < 2; ++i)
        r.push_back(F::Integer(kGyoshuCode[i], {&I::GyoshuCode, i}).Key(kGyoshuCodeKey[i]));
    r.push_back(F::Text("KofuCode", &I::KofuCode).Key("kofucode"));
    r.push_back(F::Text("Seibetu", &I::Seibetu).Key("seibetu"));
    r.push_back(F::Text("Yakushoku", &I::Yakushoku));
    r.push_back(F::Text("School", &I::School).Key("school"));
    r.push_back(F::Text("Senko", &I::Senko).Key("senko"));
    for (size_t i = 0; i < 5; ++i) {
        r.push_back(F::Text(kLicenceName[i], {&I::LicenceName, i}));
        r.push_back(Era(kLicenceDateTag[i], {&I::LicenceDate, i}).Key(kLicenceDateKey[i]));
    }
    r.push_back(F::Text("Keireki", &I::Keireki).Key("keireki"));
    for (size_t i = 0; i < 4; ++i)
        r.push_back(F::Text(kJitumuNen[i], {&I::JitumuNen, i}).Key(kJitumuNenKey[i]));
    r.push_back(F::Text("shokushu", &I::Shokusyu));
    r.push_back(F::Text("Biko", &I::Biko).Key("biko"));
    for (size_t i = 0; i < 16; ++i) {
        F f = F::Text(kBunrui[i], {&I::Bunrui, i}).Key(kBunruiKey[i]);
        if (i == 10) f = WithCmp(f, Cmp::DateFormat, kEraCompare);
        if (i >= 13) f = WithCmp(f, Cmp::None);
        r.push_back(f);
    }
    r.push_back(F::Text("EigyoSho", &I::EigyoSho).Key("eigyosho"));
    r.push_back(F::Text("Jokin", record::Slot<I>(&I::Jokin, {"常勤", "非常勤"})).Key("jokin"));
    r.push_back(F::Text("Addr", &I::Addr).Key("addr"));
    for (size_t i = 0; i < 10; ++i)
        r.push_back(F::Text(kOther[i], {&I::other, i}).Key(kOtherKey[i]));
    r.push_back(Sennin("SenninGyosyuN", &I::SenninGyosyuN_String, 31));
    r.push_back(Sennin("SenninGyosyu", &I::SenninGyosyu_String, 31));
    r.push_back(Sennin("SenninSikakuCode", &I::SenninSikakuCode_String, 16));

    // Ten flags are shared: a person needs only one tag of each pair.
    const std::pair<std::string_view, std::string_view> shared[] = {
        {"licencedate1", "shokushu"}, {"licencedate2", "Biko"},    {"licencedate3", "Bunrui1"},
        {"licencedate4", "Bunrui2"},  {"licencedate5", "Bunrui3"}, {"Keireki", "Bunrui4"},
        {"JitumuNen1", "Bunrui5"},    {"JitumuNen2", "Bunrui6"},   {"JitumuNen3", "Bunrui7"},
        {"JitumuNen4", "Bunrui8"}};
    for (auto& row : r)
        for (const auto& [a, b] : shared) {
            if (row.tag == a) row.sharesFlagWith = b;
            if (row.tag == b) row.sharesFlagWith = a;
        }
    return s;
}

std::array<std::uint8_t, 31> Digits(const std::string& text) {
    std::array<std::uint8_t, 31> out{};
    for (size_t i = 0; i < out.size() && i < text.size(); ++i)
        out[i] = text[i] >= '0' && text[i] <= '9' ? static_cast<std::uint8_t>(text[i] - '0') : 0;
    return out;
}

}  // namespace

std::string PadSennin(const std::string& value, size_t width) {
    const std::string zeros(width, '0');
    if (value.empty()) return zeros;
    return (value + zeros).substr(0, width);
}

std::array<std::uint8_t, 31> cCustKihonShokuinItem::SenninGyosyuN() const {
    return Digits(SenninGyosyuN_String);
}
std::array<std::uint8_t, 31> cCustKihonShokuinItem::SenninGyosyu() const {
    return Digits(SenninGyosyu_String);
}
std::array<std::int16_t, 8> cCustKihonShokuinItem::SenninSikakuCode() const {
    std::array<std::int16_t, 8> out{};
    for (size_t i = 0; i < out.size(); ++i)
        if (2 * i < SenninSikakuCode_String.size())
            out[i] =
                ConvertH28ShikakuCode(std::string_view(SenninSikakuCode_String).substr(2 * i, 2));
    return out;
}

const record::ListDecl<cCustKihonShokuinItem>& ShokuinList::Declaration() {
    static const record::ListDecl<cCustKihonShokuinItem> decl = Build();
    return decl;
}

}  // namespace morvane
