#include "server/net/SelfSigned.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include <memory>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "platform/AtomicFile.h"

namespace morvane::server {

namespace {

struct Deleter {
    void operator()(EVP_PKEY* p) const { EVP_PKEY_free(p); }
    void operator()(EVP_PKEY_CTX* p) const { EVP_PKEY_CTX_free(p); }
    void operator()(X509* p) const { X509_free(p); }
    void operator()(X509_EXTENSION* p) const { X509_EXTENSION_free(p); }
    void operator()(BIGNUM* p) const { BN_free(p); }
    void operator()(BIO* p) const { BIO_free(p); }
};
template <class T>
using Owned = std::unique_ptr<T, Deleter>;

[[noreturn]] void Fail(const char* what) {
    throw std::runtime_error(std::string("certificate: ") + what);
}

void AddExtension(X509* cert, int nid, const char* value) {
    X509V3_CTX ctx;
    X509V3_set_ctx_nodb(&ctx);
    X509V3_set_ctx(&ctx, cert, cert, nullptr, nullptr, 0);
    Owned<X509_EXTENSION> ext(X509V3_EXT_conf_nid(nullptr, &ctx, nid, value));
    if (!ext || X509_add_ext(cert, ext.get(), -1) != 1) Fail("extension");
}

// PEM text built in memory, then put in place whole.
template <class WritePem>
void WritePemFile(const std::filesystem::path& file, mode_t mode, const char* what,
                  WritePem write) {
    Owned<BIO> bio(BIO_new(BIO_s_mem()));
    if (!bio || write(bio.get()) != 1) Fail(what);
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    if (size < 0 || platform::WriteFileAtomically(
                        file, std::string_view(data, static_cast<size_t>(size)), mode) != 0)
        Fail("cannot write file");
}

}  // namespace

void MakeSelfSignedPair(const std::filesystem::path& certFile, const std::filesystem::path& keyFile,
                        const SelfSignedSubject& subject) {
    Owned<EVP_PKEY_CTX> kctx(EVP_PKEY_CTX_new_id(EVP_PKEY_EC, nullptr));
    if (!kctx || EVP_PKEY_keygen_init(kctx.get()) != 1 ||
        EVP_PKEY_CTX_set_ec_paramgen_curve_nid(kctx.get(), NID_X9_62_prime256v1) != 1)
        Fail("key context");
    EVP_PKEY* rawKey = nullptr;
    if (EVP_PKEY_keygen(kctx.get(), &rawKey) != 1) Fail("key generation");
    Owned<EVP_PKEY> key(rawKey);

    Owned<X509> cert(X509_new());
    if (!cert) Fail("x509");
    X509_set_version(cert.get(), 2);
    Owned<BIGNUM> serial(BN_new());
    if (!serial || BN_rand(serial.get(), 64, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) != 1 ||
        !BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(cert.get())))
        Fail("serial");
    X509_gmtime_adj(X509_getm_notBefore(cert.get()), subject.validFromSeconds);
    X509_gmtime_adj(X509_getm_notAfter(cert.get()), subject.validToSeconds);
    X509_set_pubkey(cert.get(), key.get());
    X509_NAME* name = X509_get_subject_name(cert.get());
    X509_NAME_add_entry_by_txt(name, "O", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>("morvane-server"), -1, -1, 0);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(subject.commonName.c_str()),
                               -1, -1, 0);
    X509_set_issuer_name(cert.get(), name);
    AddExtension(cert.get(), NID_basic_constraints, "critical,CA:TRUE");
    AddExtension(cert.get(), NID_key_usage, "critical,digitalSignature,keyCertSign");
    AddExtension(cert.get(), NID_ext_key_usage, "serverAuth");
    AddExtension(cert.get(), NID_subject_key_identifier, "hash");
    AddExtension(cert.get(), NID_subject_alt_name, subject.altNames.c_str());
    if (X509_sign(cert.get(), key.get(), EVP_sha256()) == 0) Fail("sign");

    // The certificate goes first and comes back last: a pair cut short lacks its certificate
    // and is made afresh, never left as a key that does not match it.
    std::error_code ec;
    std::filesystem::remove(certFile, ec);
    platform::SyncFolder(certFile.parent_path().empty() ? "." : certFile.parent_path());
    WritePemFile(keyFile, 0600, "write key", [&](BIO* bio) {
        return PEM_write_bio_PrivateKey(bio, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
    WritePemFile(certFile, 0644, "write certificate",
                 [&](BIO* bio) { return PEM_write_bio_X509(bio, cert.get()); });
}

}  // namespace morvane::server
