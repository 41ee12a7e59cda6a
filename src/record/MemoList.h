// A customer's dated notes (table tCustomerHistory) as a list of the customer record: the
// item and the declaration the list machinery reads, compares, writes and sends.
#pragma once

#include <array>
#include <string>

#include "lists/ListDecl.h"
#include "lists/ListWorker.h"

namespace morvane {

struct cCustKihonMemoItem : record::ListItem {
    std::string History, RegDate, UpdateDate;
    std::array<std::string, 3> other;
};

class MemoList : public record::ListWorker<cCustKihonMemoItem> {
public:
    MemoList() : ListWorker(Declaration()) {}
    static const record::ListDecl<cCustKihonMemoItem>& Declaration();
};

}  // namespace morvane
