#include "record/KihonFields.h"

namespace morvane {
namespace {

using R = KihonRecord;
using record::Cmp;
using record::Conv;
using record::Guard;
using record::Slot;

// A row under construction: text, compared as text, always written, unless told otherwise.
struct Def {
    KihonField row;

    Def(std::string_view tag, std::string_view key, std::string_view column, Slot<R> slot) {
        row.tag = tag;
        row.key = key;
        row.column = column;
        row.slot = std::move(slot);
    }
    Def& Req() {
        row.required = true;
        return *this;
    }
    Def& As(Conv c) {
        row.conv = c;
        return *this;
    }
    Def& Compare(Cmp c, std::string_view format = {}) {
        row.cmp = c;
        row.format = format;
        return *this;
    }
    Def& Write(Guard g, std::string_view format = {}) {
        row.guard = g;
        row.writeFormat = format;
        return *this;
    }
    Def& In(std::string_view table) {
        row.table = table;
        return *this;
    }
    Def& LoadInto(Slot<R> slot) {
        row.dbSlot = std::move(slot);
        return *this;
    }
    Def& SplitTailInto(Slot<R> slot) {
        row.splitTail = std::move(slot);
        return *this;
    }
    operator KihonField() const { return row; }
};

// A text field under the same name everywhere.
Def T(std::string_view name, Slot<R> slot) { return Def(name, name, name, std::move(slot)); }
// A 32-bit field compared through NzLong.
Def N(std::string_view name, Slot<R> slot) {
    return Def(name, name, name, std::move(slot)).As(Conv::Long).Compare(Cmp::Long);
}
// A date text, Null in the column unless it is a date, sent only when it is one.
Def D(std::string_view name, Slot<R> slot) {
    return Def(name, name, name, std::move(slot)).As(Conv::Date).Write(Guard::NullUnlessDate);
}

std::vector<KihonField> Build() {
    std::vector<KihonField> rows{
        Def("Code", "Code", "Code", &R::Code).Compare(Cmp::None).Write(Guard::NonEmpty),
        Def("AcDate", "AcDate", "AcDate", &R::AcDate)
            .Req()
            .Compare(Cmp::DateFormat, "M月d日")
            .Write(Guard::NullUnlessDate),
        T("ZipCode0", {&R::ZipCode, 0}).Req(),
        T("ZipCode1", {&R::ZipCode, 1}).Req(),
        Def("Addr0", "addr0", "Addr0", {&R::Addr, 0}).Req(),
        Def("addr1", "addr1", "addr1", {&R::Addr, 1}).Req(),
        Def("Addr2", "addr2", "Addr2", {&R::Addr, 2}).Req(),
        T("TZipCode0", {&R::TZipCode, 0}),
        T("TZipCode1", {&R::TZipCode, 1}),
        Def("TAddr0", "Taddr0", "TAddr0", {&R::TAddr, 0}),
        Def("TAddr1", "Taddr1", "TAddr1", {&R::TAddr, 1}),
        Def("TAddr2", "Taddr2", "TAddr2", {&R::TAddr, 2}),
        T("CorpKana0", {&R::CorpKana, 0}),
        T("CorpName0", {&R::CorpName, 0}).Req(),
        T("CorpKanaS", &R::CorpKanaS),
        T("CorpKana1", {&R::CorpKana, 1}).As(Conv::NumericText),
        T("CorpName1", {&R::CorpName, 1}),
        T("Post0", {&R::post, 0}),
        T("Post1", {&R::post, 1}),
        T("ApfKana0", {&R::ApfKana, 0}),
        T("ApfName0", {&R::ApfName, 0}).Req(),
        T("ApfKana1", {&R::ApfKana, 1}),
        T("ApfName1", {&R::ApfName, 1}),
        Def("Tel0", "tel0", "Tel0", {&R::TEL, 0}).Req(),
        Def("TEL1", "tel1", "TEL1", {&R::TEL, 1}).Req(),
        Def("TEL2", "tel2", "TEL2", {&R::TEL, 2}).Req(),
        Def("Fax0", "fax0", "Fax0", {&R::FAX, 0}).Req(),
        Def("FAX1", "fax1", "FAX1", {&R::FAX, 1}).Req(),
        Def("FAX2", "fax2", "FAX2", {&R::FAX, 2}).Req(),
        T("ChPost", &R::ChPost),
        T("ChKana", &R::ChKana),
        T("ChName", &R::ChName),
        T("ChTel0", {&R::ChTel, 0}),
        T("ChTel1", {&R::ChTel, 1}),
        T("ChTel2", {&R::ChTel, 2}),
        T("ChFax0", {&R::ChFax, 0}),
        T("ChFax1", {&R::ChFax, 1}),
        T("ChFax2", {&R::ChFax, 2}),
        T("ChEMail", &R::ChEMail),
        // The slot order of other is not the order of the tag numbers.
        Def("Other1", "other1", "Other1", {&R::other, 0}),
        Def("Other2", "other2", "Other2", {&R::other, 1}),
        Def("Other3", "other3", "Other3", {&R::other, 2}),
        Def("Other4", "other4", "Other4", {&R::other, 9}),
        Def("Other7", "other7", "Other7", {&R::other, 6}),
        Def("Other5", "other5", "Other5", {&R::other, 8}),
        T("ExOther4", {&R::ExOther, 0}),
        T("ExOther5", {&R::ExOther, 1}),
        T("ExOther6", {&R::ExOther, 2}),
        T("ExOther7", {&R::ExOther, 3}),
        T("ExOther8", {&R::ExOther, 4}),
        T("ExOther9", {&R::ExOther, 5}),
        T("ExOther10", {&R::ExOther, 6}),
        T("ExOther12", {&R::ExOther, 12}),
        T("ExOther13", {&R::ExOther, 13}).Compare(Cmp::TextNoTabs),
        T("ExOther14", {&R::ExOther, 14}).Compare(Cmp::TextNoTabs),
        T("ExOther15", {&R::ExOther, 15}).Compare(Cmp::TextNoTabs),
        T("ExOther16", {&R::ExOther, 16}).Compare(Cmp::TextNoTabs),
        T("ExOther17", {&R::ExOther, 17}).Req().Compare(Cmp::TextIfNonZero).Write(Guard::NonZero),
        T("ExOther18", {&R::ExOther, 18}),
        T("ApfPlace", &R::ApfPlace),
        T("MinName", &R::MinName),
        T("MinCode", &R::MinCode),
        T("PmtCheck0", {&R::PmtCheck, 0}).As(Conv::NzLong).Compare(Cmp::Long),
        T("PmtCheck1", {&R::PmtCheck, 1}).As(Conv::NzLong).Compare(Cmp::Float),
        T("PmtYear", &R::PmtYear),
        T("PmtNo", &R::PmtNo).SplitTailInto({&R::other, 6}),
        D("PApDate", &R::PApDate).Compare(Cmp::DateFormat, "yyyy/MM/dd hh:mm:ss"),
        D("PmtDate0", {&R::PmtDate, 0}),
        D("PmtDate1", {&R::PmtDate, 1}),
        D("PmtDate2", {&R::PmtDate, 2}),
        T("KessanTaioh", &R::KessanTaioh),
        T("AddrKana1", {&R::Reserved1, 0}),
        T("AddrKana2", {&R::Reserved1, 1}),
        N("HoKoType", {&R::Reserved2, 0}).Compare(Cmp::None),
        N("UserStaffID", {&R::Reserved2, 1}),
        // The reader and the upload share slot 1 with UserStaffID; only the loader keeps
        // it apart.
        N("DataUpdateFlag", {&R::Reserved2, 1})
            .Compare(Cmp::None)
            .Write(Guard::Never)
            .LoadInto({&R::Reserved2, 2}),
        D("SeturituDate", {&R::Reserved1, 2})
            .Compare(Cmp::DateFormat, "yyyy/MM/dd")
            .Write(Guard::NullUnlessDate, "yyyy/MM/dd"),
        D("SogyoDate", {&R::Reserved1, 3})
            .Compare(Cmp::DateFormat, "yyyy/MM/dd")
            .Write(Guard::NullUnlessDate, "yyyy/MM/dd"),
        N("KengyoExist", {&R::Reserved2, 3}),
        T("KengyoNaiyo", {&R::Reserved1, 4}),
        N("Itaku", {&R::Reserved2, 4}),
        N("DMSendType", {&R::Reserved2, 5}),
        N("SeireiShitei", {&R::Reserved2, 6}),
        N("NotKanyo", {&R::Reserved2, 7}),
        N("CheckEx", &R::CheckEx).Compare(Cmp::None).In(kKeisinTable),
        Def("Manage", "Manage", "Manage", &R::NyusatsuManage)
            .As(Conv::Long)
            .Compare(Cmp::None)
            .In(kNyusatsuTable),
        Def("", "", "CorpNum", {&R::Reserved1, 5}).Compare(Cmp::None).Write(Guard::Never),
    };
    rows[0].flagged = false;  // Code sets no flag
    rows[0].nullFailsLoad = true;
    rows.back().flagged = false;  // CorpNum is not in the XML
    return rows;
}

}  // namespace

const std::vector<KihonField>& KihonFields() {
    static const std::vector<KihonField> rows = Build();
    return rows;
}

}  // namespace morvane
