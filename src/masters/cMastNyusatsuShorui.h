// The office's master of bidding documents (table tNyusatsuShorui), in the order of their ids.
#pragma once

#include <string>

#include "masters/MasterList.h"

namespace morvane {

struct cMastNyusatsuShoruiItem : record::ListItem {
    std::string Name, Visible, vno;
};

class cMastNyusatsuShorui : public masters::MasterList<cMastNyusatsuShoruiItem> {
public:
    cMastNyusatsuShorui() : MasterList(Declaration()) {}
    static const record::ListDecl<cMastNyusatsuShoruiItem>& Declaration();
};

}  // namespace morvane
