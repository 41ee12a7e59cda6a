// The office's master of bidding agencies (table tNyusatsuKikan): 142 fields a record, a
// hundred of them the checklist of documents an agency asks for.
#pragma once

#include <array>
#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastNyusatsuKikanItem : record::ListItem {
    std::string KikanCode, KikanName, ReceptionYear, ValidityTerm, ReceptionDateFrom,
        ReceptionDateTo, ReceptionTime1From, ReceptionTime1To, ReceptionTime2From, ReceptionTime2To;
    std::array<std::string, 10> ReceptionFlags;
    std::string PresentationPlace, PresentationNote, DistributionDate, DistributionPlace,
        DistributionPlice, DistributionNote, ZipCode1, ZipCode2, Address, Station;
    std::array<std::string, 3> TEL, FAX;
    std::string Mail, ApplicationPlace, ApplicationName, ApplicationNote;
    std::array<std::string, 100> NeedDoc;
    std::string NeedDocOthers, vno;
};

class cMastNyusatsukikan : public masters::MasterList<cMastNyusatsuKikanItem> {
public:
    cMastNyusatsukikan() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastNyusatsuKikanItem>& Declaration();
};

}  // namespace morvane
