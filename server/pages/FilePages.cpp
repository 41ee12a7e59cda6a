// Data files of settlement, permit and other records: hash, download, upload, delete, rename.
#include "server/pages/Service.h"
#include "server/util/Text.h"

namespace morvane::server {

namespace {

std::string HeaderOf(const HttpRequest& request, const std::string& name) {
    auto it = request.headers.find(name);
    return it == request.headers.end() ? std::string() : it->second;
}

}  // namespace

void Service::WriteFileItem(XmlWriter& xml, const std::string& kind, std::int64_t customer,
                            const std::optional<FileInfo>& info) {
    xml.Open("Customer").Leaf("CustomerID", std::to_string(customer));
    xml.Open(kind + "FileList");
    if (info) {
        xml.Open(kind + "FileItem")
            .Leaf("FileName", info->name)
            .Leaf("FileSize", std::to_string(info->size))
            .Leaf("LastModified", StampText(info->modified))
            .Leaf("hash", info->crc)
            .Close();
    }
    xml.Close().Close();
}

void Service::AddFileRoutes() {
    for (const std::string kind : {"Kessan", "Kyoka", "Other"}) {
        const auto checkedName = [](Call& call, const char* key) {
            auto name = call.body.GetOr(key);
            if (!FileStore::ValidName(name)) throw PageFailure(-1, "bad file name");
            return name;
        };
        routes_["customer/get" + kind + "FileHash.php"] = {
            {"ID", "token", "CustomerID", "FileName"}, [this, kind, checkedName](Call& call) {
                const auto customer = CustomerOf(call);
                const auto name = checkedName(call, "FileName");
                WriteFileItem(call.xml, kind, customer,
                              files_.Info({call.user.accountId, customer, kind}, name));
            }};
        routes_["customer/delete" + kind + "File.php"] = {
            {"ID", "token", "CustomerID", "FileName"}, [this, kind, checkedName](Call& call) {
                const auto customer = CustomerOf(call);
                const auto name = checkedName(call, "FileName");
                RefuseIfLocked(call, Scope::Customer, customer);
                files_.Remove({call.user.accountId, customer, kind}, name);
            }};
        routes_["customer/rename" + kind + "File.php"] = {
            {"ID", "token", "CustomerID", "SrcFile", "DstFile"},
            [this, kind, checkedName](Call& call) {
                const auto customer = CustomerOf(call);
                const auto from = checkedName(call, "SrcFile");
                const auto to = checkedName(call, "DstFile");
                RefuseIfLocked(call, Scope::Customer, customer);
                // An unknown source leaves nothing to do; the next comparison sends the file.
                if (from != to) files_.Rename({call.user.accountId, customer, kind}, from, to);
            }};
    }
}

HttpReply Service::FileDownload(const HttpRequest& request, const std::string& kind) {
    // The reply is the file itself: no envelope, so the token is checked but not rotated. Any
    // refusal is an empty body, which the client takes as "nothing fetched".
    HttpReply reply;
    reply.contentType = "application/octet-stream";
    const auto body = FormBody::Parse(request.body, {"ID", "token", "CustomerID", "FileName"});
    reply.flags = 0;
    if (body.Malformed()) return reply;
    const auto user = sessions_.Peek(body.GetOr("ID"), body.GetOr("token"));
    if (!user) return reply;
    reply.flags = -1;
    const auto customer = ParseInt32(body.GetOr("CustomerID"));
    const auto name = body.GetOr("FileName");
    if (!customer || !FileStore::ValidName(name) ||
        !records_.CustomerExists(user->accountId, *customer))
        return reply;
    if (auto bytes = files_.Read({user->accountId, *customer, kind}, name)) {
        reply.body = std::move(*bytes);
        reply.flags = 1;
    }
    return reply;
}

HttpReply Service::FileUpload(const HttpRequest& request, const std::string& kind) {
    const auto userId = HeaderOf(request, "userid");
    const auto token = HeaderOf(request, "token");
    return RunJudged(request, FormBody{}, userId, token, [this, kind](Call& call) {
        const auto& req = call.request;
        if (req.bodyRefused) throw PageFailure(-1, "file too large");
        const auto customer = ParseInt32(HeaderOf(req, "customerid"));
        if (!customer || !records_.CustomerExists(call.user.accountId, *customer))
            throw PageFailure(-1, "unknown customer");
        // The listener's HTTP library hands header values over percent-decoded already; a
        // second decoding would turn a name's own "%" into an escape or refuse it.
        const auto name = std::optional<std::string>(HeaderOf(req, "filename"));
        if (!name || !FileStore::ValidName(*name)) throw PageFailure(-1, "bad file name");
        if (req.body.size() > options_.maxUploadBytes) throw PageFailure(-1, "file too large");
        RefuseIfLocked(call, Scope::Customer, *customer);
        const auto info =
            files_.Write({call.user.accountId, *customer, kind}, *name, req.body, clock_.Now());
        WriteFileItem(call.xml, kind, *customer, info);
    });
}

}  // namespace morvane::server
