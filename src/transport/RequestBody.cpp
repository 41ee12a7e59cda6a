#include "transport/RequestBody.h"

#include "state/LoginState.h"

namespace morvane {
namespace {
std::string Start(std::string_view idKey) {
    std::string body;
    AppendField(body, idKey, GetLoginID());
    AppendField(body, "token", GetLoginToken());
    return body;
}
}  // namespace

void AppendField(std::string& body, std::string_view name, std::string_view value) {
    body += name;
    body += '=';
    body += value;
    body += '&';
}

std::string UpperBody() { return Start("ID"); }

std::string UpperCustomerBody(std::int32_t custId) {
    std::string body = Start("ID");
    AppendField(body, "CustomerID", std::to_string(custId));
    return body;
}

std::string LowerCustomerBody(std::int32_t custId) {
    std::string body = Start("id");
    AppendField(body, "CustomerID", std::to_string(custId));
    return body;
}

std::string LowerMasterBody(std::int32_t mastId) {
    std::string body = Start("id");
    AppendField(body, "MasterID", std::to_string(mastId));
    return body;
}

std::string FileBody(std::int32_t custId, std::string_view fileName) {
    std::string body = UpperCustomerBody(custId);
    const size_t slash = fileName.find_last_of("/\\");
    AppendField(body, "FileName",
                slash == std::string_view::npos ? fileName : fileName.substr(slash + 1));
    return body;
}

}  // namespace morvane
