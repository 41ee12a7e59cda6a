#include "ServerFixture.h"

#include <httplib.h>

namespace morvane::server::testing {

Reply::Reply(std::string body) : text(std::move(body)) { doc.load_string(text.c_str()); }

int Reply::Flags() const {
    auto node = doc.document_element().child("system").child("flags");
    return node ? std::stoi(node.text().get()) : -99;
}

std::string Reply::Token() const { return At("system/token"); }

pugi::xml_node Reply::Payload(const char* name) const { return doc.document_element().child(name); }

std::string Reply::At(const std::string& path) const {
    const auto node = doc.document_element().first_element_by_path(path.c_str());
    return node ? node.text().get() : "";
}

void ServerTest::SetUp() {
    clock_ = std::make_shared<ManualClock>();
    options_.dataDir = dir_.Path() / "data";
    options_.clock = clock_;
    options_.maxUploadBytes = 64 * 1024;
    server_ = std::make_unique<MorvaneServer>(options_);
    server_->Start();
    AccountFields account;
    account.contractNo = "K100";
    account.contractorName = "テスト建設";
    account.contractBegin = "2024/04/01";
    account.contractEnd = "2025/03/31";
    account.sharedCount = 2;
    account.maxCustomer = 3;
    server_->CreateAccount(account);
    server_->AddUser("K100", "u1", "secret", "山田");
    server_->AddUser("K100", "u2", "other", "佐藤");
}

std::string ServerTest::RawPost(const std::string& path, const std::string& body,
                                const std::multimap<std::string, std::string>& headers) {
    httplib::SSLClient client("127.0.0.1", server_->Port());
    client.set_ca_cert_path(server_->CertFile().c_str());
    client.enable_server_certificate_verification(true);
    auto res = client.Post("/" + path, httplib::Headers(headers.begin(), headers.end()), body,
                           "application/x-www-form-urlencoded");
    if (!res) ADD_FAILURE() << "no reply from " << path;
    return res ? res->body : "";
}

Login ServerTest::LogIn(const std::string& userId, const std::string& password) {
    Reply r = Post("login.php", "no=K100&ID=" + userId + "&PW=" + password + "&");
    EXPECT_EQ(r.Flags(), 1) << r.text;
    return {userId, r.Token()};
}

Reply ServerTest::Call(Login& login, const std::string& path, const std::string& rest) {
    Reply r = Post(path, "ID=" + login.userId + "&token=" + login.token + "&" + rest);
    if (r.doc.document_element().child("system")) login.token = r.Token();
    return r;
}

Reply ServerTest::UploadFile(Login& login, const std::string& kind, int customer,
                             const std::string& encodedName, const std::string& bytes) {
    Reply r(RawPost("customer/set" + kind + "File.php", bytes,
                    {{"CMD", "post"},
                     {"USERID", login.userId},
                     {"TOKEN", login.token},
                     {"CUSTOMERID", std::to_string(customer)},
                     {"FILENAME", encodedName}}));
    if (r.doc.document_element().child("system")) login.token = r.Token();
    return r;
}

void ServerTest::CreateCustomer(Login& login, int customer, const std::string& code) {
    Reply r = Call(login, "customer/createCompKihon.php",
                   "CustomerID=" + std::to_string(customer) + "&Code=" + code +
                       "&CorpName0=名前&CorpKanaS=ナ&CorpKana0=ナ&");
    ASSERT_EQ(r.Flags(), 1) << r.text;
}

}  // namespace morvane::server::testing
