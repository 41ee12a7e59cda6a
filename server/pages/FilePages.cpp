// Data files of settlement, permit and other records: hash, download, upload, delete, rename.
#include "server/pages/Service.h"
#include "server/util/Text.h"

namespace morvane::server {

namespace {

std::string headerOf(const HttpRequest& request, const std::string& name) {
    auto it = request.headers.find(name);
    return it == request.headers.end() ? std::string() : it->second;
}

}  // namespace

void Service::writeFileItem(XmlWriter& xml, const std::string& kind, std::int64_t customer,
                            const std::optional<FileInfo>& info) {
    xml.open("Customer").leaf("CustomerID", std::to_string(customer));
    xml.open(kind + "FileList");
    if (info) {
        xml.open(kind + "FileItem")
            .leaf("FileName", info->name)
            .leaf("FileSize", std::to_string(info->size))
            .leaf("LastModified", stampText(info->modified))
            .leaf("hash", info->crc)
            .close();
    }
    xml.close().close();
}

void Service::addFileRoutes() {
    for (const std::string kind : {"Kessan", "Kyoka", "Other"}) {
        const auto checkedName = [](Call& call, const char* key) {
            auto name = call.body.getOr(key);
            if (!FileStore::validName(name)) throw PageFailure(-1, "bad file name");
            return name;
        };
        routes_["customer/get" + kind + "FileHash.php"] = {
            {"ID", "token", "CustomerID", "FileName"}, [this, kind, checkedName](Call& call) {
                const auto customer = customerOf(call);
                const auto name = checkedName(call, "FileName");
                writeFileItem(call.xml, kind, customer,
                              files_.info({call.user.accountId, customer, kind}, name));
            }};
        routes_["customer/delete" + kind + "File.php"] = {
            {"ID", "token", "CustomerID", "FileName"}, [this, kind, checkedName](Call& call) {
                const auto customer = customerOf(call);
                const auto name = checkedName(call, "FileName");
                refuseIfLocked(call, Scope::Customer, customer);
                files_.remove({call.user.accountId, customer, kind}, name);
            }};
        routes_["customer/rename" + kind + "File.php"] = {
            {"ID", "token", "CustomerID", "SrcFile", "DstFile"},
            [this, kind, checkedName](Call& call) {
                const auto customer = customerOf(call);
                const auto from = checkedName(call, "SrcFile");
                const auto to = checkedName(call, "DstFile");
                refuseIfLocked(call, Scope::Customer, customer);
                // An unknown source leaves nothing to do; the next comparison sends the file.
                if (from != to) files_.rename({call.user.accountId, customer, kind}, from, to);
            }};
    }
}

HttpReply Service::fileDownload(const HttpRequest& request, const std::string& kind) {
    // The reply is the file itself: no envelope, so the token is checked but not rotated. Any
    // refusal is an empty body, which the client takes as "nothing fetched".
    HttpReply reply;
    reply.contentType = "application/octet-stream";
    const auto body = FormBody::parse(request.body, {"ID", "token", "CustomerID", "FileName"});
    reply.flags = 0;
    if (body.malformed()) return reply;
    const auto user = sessions_.peek(body.getOr("ID"), body.getOr("token"));
    if (!user) return reply;
    reply.flags = -1;
    const auto customer = parseInt32(body.getOr("CustomerID"));
    const auto name = body.getOr("FileName");
    if (!customer || !FileStore::validName(name) ||
        !records_.customerExists(user->accountId, *customer))
        return reply;
    if (auto bytes = files_.read({user->accountId, *customer, kind}, name)) {
        reply.body = std::move(*bytes);
        reply.flags = 1;
    }
    return reply;
}

HttpReply Service::fileUpload(const HttpRequest& request, const std::string& kind) {
    const auto userId = headerOf(request, "userid");
    const auto token = headerOf(request, "token");
    return runJudged(request, FormBody{}, userId, token, [this, kind](Call& call) {
        const auto& req = call.request;
        if (req.bodyRefused) throw PageFailure(-1, "file too large");
        const auto customer = parseInt32(headerOf(req, "customerid"));
        if (!customer || !records_.customerExists(call.user.accountId, *customer))
            throw PageFailure(-1, "unknown customer");
        const auto name = percentDecode(headerOf(req, "filename"));
        if (!name || !FileStore::validName(*name)) throw PageFailure(-1, "bad file name");
        if (req.body.size() > options_.maxUploadBytes) throw PageFailure(-1, "file too large");
        refuseIfLocked(call, Scope::Customer, *customer);
        const auto info =
            files_.write({call.user.accountId, *customer, kind}, *name, req.body, clock_.now());
        writeFileItem(call.xml, kind, *customer, info);
    });
}

}  // namespace morvane::server
