// SPDX-License-Identifier: MIT
#include "service/Certificates.h"

#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "service/Loopback.h"

namespace ZorvaneService {

namespace {

constexpr long day = 24L * 3600;
constexpr long authorityDays = 3650;
// Longer-lived server certificates are refused by some TLS clients.
constexpr long serverDays = 390;
constexpr long renewBeforeDays = 30;
constexpr int serialBits = 120;

struct Deleter {
    void operator()(X509 *certificate) const { X509_free(certificate); }
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
    void operator()(X509_EXTENSION *extension) const { X509_EXTENSION_free(extension); }
    void operator()(BIGNUM *number) const { BN_free(number); }
    void operator()(FILE *file) const { std::fclose(file); }
};
using Certificate = std::unique_ptr<X509, Deleter>;
using Key = std::unique_ptr<EVP_PKEY, Deleter>;
using File = std::unique_ptr<FILE, Deleter>;

struct Identity {
    Certificate certificate;
    Key key;
};

Key newKey()
{
    return Key(EVP_EC_gen("P-256"));
}

bool addExtension(X509 *certificate, X509 *issuer, int name, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, Deleter> extension(
        X509V3_EXT_conf_nid(nullptr, &context, name, value));
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

/// A certificate for `key` that lasts `days`, not yet signed.
Certificate newCertificate(EVP_PKEY *key, const char *commonName, X509_NAME *issuer, long days)
{
    Certificate certificate(X509_new());
    const std::unique_ptr<BIGNUM, Deleter> serial(BN_new());
    if (!certificate || !serial || BN_rand(serial.get(), serialBits, 0, 0) != 1)
        return nullptr;
    X509_set_version(certificate.get(), 2);
    BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(certificate.get()));
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), days * day);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME *name = X509_get_subject_name(certificate.get());
    const auto *text = reinterpret_cast<const unsigned char *>(commonName);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, text, -1, -1, 0);
    X509_set_issuer_name(certificate.get(), issuer ? issuer : name);
    return certificate;
}

Identity newAuthority(const std::string &name)
{
    Identity authority;
    authority.key = newKey();
    authority.certificate =
        newCertificate(authority.key.get(), name.c_str(), nullptr, authorityDays);
    X509 *certificate = authority.certificate.get();
    const bool good =
        certificate &&
        addExtension(certificate, certificate, NID_basic_constraints, "critical,CA:TRUE") &&
        addExtension(certificate, certificate, NID_key_usage, "critical,keyCertSign,cRLSign") &&
        addExtension(certificate, certificate, NID_subject_key_identifier, "hash") &&
        X509_sign(certificate, authority.key.get(), EVP_sha256()) > 0;
    return good ? std::move(authority) : Identity();
}

Identity newServer(const Identity &authority)
{
    Identity server;
    server.key = newKey();
    X509 *issuer = authority.certificate.get();
    server.certificate =
        newCertificate(server.key.get(), "localhost", X509_get_subject_name(issuer), serverDays);
    X509 *certificate = server.certificate.get();
    const std::string alternativeNames = std::string("IP:") + loopback + ",DNS:localhost";
    const bool good =
        certificate && addExtension(certificate, issuer, NID_basic_constraints, "CA:FALSE") &&
        addExtension(certificate, issuer, NID_key_usage, "critical,digitalSignature") &&
        addExtension(certificate, issuer, NID_ext_key_usage, "serverAuth") &&
        addExtension(certificate, issuer, NID_subject_alt_name, alternativeNames.c_str()) &&
        addExtension(certificate, issuer, NID_authority_key_identifier, "keyid") &&
        X509_sign(certificate, authority.key.get(), EVP_sha256()) > 0;
    return good ? std::move(server) : Identity();
}

File openPrivate(const std::string &fileName)
{
    const int file = open(fileName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file >= 0)
        fchmod(file, 0600);
    return File(file >= 0 ? fdopen(file, "w") : nullptr);
}

bool save(const Identity &identity, const std::string &certificateFile, const std::string &keyFile)
{
    const File key = openPrivate(keyFile);
    const File certificate(std::fopen(certificateFile.c_str(), "we"));
    return key && certificate &&
           PEM_write_PrivateKey(key.get(), identity.key.get(), nullptr, nullptr, 0, nullptr,
                                nullptr) == 1 &&
           PEM_write_X509(certificate.get(), identity.certificate.get()) == 1;
}

/// Empty when a file is missing or the certificate has not long to live.
Identity load(const std::string &certificateFile, const std::string &keyFile)
{
    Identity identity;
    const File certificate(std::fopen(certificateFile.c_str(), "re"));
    const File key(std::fopen(keyFile.c_str(), "re"));
    if (!certificate || !key)
        return {};
    identity.certificate.reset(PEM_read_X509(certificate.get(), nullptr, nullptr, nullptr));
    identity.key.reset(PEM_read_PrivateKey(key.get(), nullptr, nullptr, nullptr));
    if (!identity.certificate || !identity.key ||
        X509_check_private_key(identity.certificate.get(), identity.key.get()) != 1)
        return {};
    int daysLeft = 0;
    int secondsLeft = 0;
    ASN1_TIME_diff(&daysLeft, &secondsLeft, nullptr,
                   X509_get0_notAfter(identity.certificate.get()));
    return daysLeft >= renewBeforeDays ? std::move(identity) : Identity();
}

} // namespace

Certificates Certificates::inFolder(const std::string &folder, const std::string &authorityName)
{
    Certificates result;
    result.authorityFile = folder + "/ca.pem";
    result.serverFile = folder + "/server.pem";
    result.serverKeyFile = folder + "/server-key.pem";
    const std::string authorityKeyFile = folder + "/ca-key.pem";

    Identity authority = load(result.authorityFile, authorityKeyFile);
    Identity server;
    if (authority.certificate) {
        server = load(result.serverFile, result.serverKeyFile);
        if (server.certificate && X509_verify(server.certificate.get(), authority.key.get()) != 1)
            server = Identity();
    } else {
        authority = newAuthority(authorityName);
        if (!authority.certificate || !save(authority, result.authorityFile, authorityKeyFile)) {
            result.error = "cannot make a certificate authority in " + folder;
            return result;
        }
    }
    if (!server.certificate) {
        server = newServer(authority);
        if (!server.certificate || !save(server, result.serverFile, result.serverKeyFile))
            result.error = "cannot make a server certificate in " + folder;
    }
    return result;
}

} // namespace ZorvaneService
