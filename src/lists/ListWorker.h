// The worker of one kind of list, made from its declaration: it reads the server's reply,
// compares it with the local rows, writes it into them, and sends the local rows up.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "lists/ListCompare.h"
#include "lists/ListDownload.h"
#include "lists/ListReader.h"
#include "lists/ListUpload.h"
#include "platform/Xml.h"
#include "session/mdlErrTrap.h"

namespace morvane::record {

template <class Item>
class ListWorker {
public:
    explicit ListWorker(const ListDecl<Item>& decl) : spec_(decl) {}
    ListWorker(const ListWorker&) = default;
    // Takes the other's data and keeps its own declaration, so a record holding lists can be
    // assigned.
    ListWorker& operator=(const ListWorker& other) {
        data_ = other.data_;
        return *this;
    }

    std::int32_t CustomerID() const { return data_.customerId; }
    // The server list's stamp; empty unless the reply's value was a date.
    const std::string& RecordUpdate() const { return data_.recordUpdate; }
    // The count tag of a reply, or the local row count after a local read.
    std::int32_t Count() const { return data_.count; }
    const std::vector<Item>& Items() const { return data_.items; }
    // Empties the object, as before a read.
    void Clear() { data_ = {}; }
    // Puts one stamp on the list, as when one reply carries several lists under one stamp.
    void Restamp(std::string recordUpdate) { data_.recordUpdate = std::move(recordUpdate); }

    // Clears the object, then reads the reply: false unless it is a whole list.
    bool ReadXML(std::string_view xml) {
        data_ = {};
        const auto doc = platform::XmlDocument::Load(xml);
        return doc && ReadXML(*doc);
    }
    bool ReadXML(const platform::XmlDocument& doc) {
        data_ = {};
        try {
            return ReadListXml(spec_, doc, data_);
        } catch (...) {
            return Trap(false);
        }
    }

    // 0 when the server's list and the customer's rows agree, else the decision code.
    std::int32_t CompareLocalDB(const std::string& LocalDB, std::int32_t CustID) {
        try {
            return CompareListRows(spec_, data_, LocalDB, CustID);
        } catch (...) {
            return Trap(0);
        }
    }
    // Rewrites the customer's rows from the list read; 1 on success.
    std::int32_t SyncDownload(const std::string& LocalDB, std::int32_t CustID) {
        try {
            DownloadListRows(spec_, data_, LocalDB, CustID);
            return 1;
        } catch (...) {
            return Trap(0);
        }
    }
    // Reads the customer's rows and sends them, then runs the closing step, whose failure
    // fails the upload; 0 and nothing sent when there are no rows.
    std::int32_t SyncUpload(const std::string& LocalDB, std::int32_t CustID,
                            const std::function<bool()>& closing = {}) {
        try {
            if (!ReadLocalDB(LocalDB, CustID)) return 0;
            return UploadListItems(spec_, data_, LocalDB, CustID, closing);
        } catch (...) {
            return Trap(0);
        }
    }

    // Clears the object and loads the customer's live rows; false when there are none.
    bool ReadLocalDB(const std::string& LocalDB, std::int32_t CustID) {
        data_ = {};
        try {
            auto ws = CreateMorvaneWorkspace();
            return LoadListRows(spec_, ws->OpenDatabase(LocalDB), CustID, data_);
        } catch (...) {
            return Trap(false);
        }
    }
    // The body an upload posts for the item at a position counted from 1.
    std::string UploadBody(const Item& item, std::int32_t CustID, std::int32_t position) const {
        return ListItemBody(spec_, item, CustID, position);
    }

private:
    // The closing block of a member that failed: the error trap, and the failure value.
    template <class T>
    static T Trap(T failure) {
        CaptureError(std::current_exception());
        ErrTrap();
        return failure;
    }

    const ListDecl<Item>& spec_;
    ListData<Item> data_;
};

}  // namespace morvane::record
