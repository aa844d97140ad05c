#include "demo/TestCertificate.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace varno {
namespace {

void require(bool done)
{
    if (!done)
        throw std::runtime_error("OpenSSL cannot make a certificate");
}

void setRandomSerialNumber(X509* certificate)
{
    std::uint64_t number = 0;
    require(RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof(number)) == 1);
    require(ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), number) == 1);
}

void setNames(X509* certificate)
{
    const QByteArray commonName = "Stand-in service";
    X509_NAME* name = X509_get_subject_name(certificate);
    require(X509_NAME_add_entry_by_txt(
                name, "CN", MBSTRING_UTF8,
                reinterpret_cast<const unsigned char*>(commonName.constData()), -1, -1, 0) == 1);
    require(X509_set_issuer_name(certificate, name) == 1);
}

} // namespace

void TestCertificate::Free::operator()(X509* certificate) const
{
    X509_free(certificate);
}

void TestCertificate::Free::operator()(EVP_PKEY* key) const
{
    EVP_PKEY_free(key);
}

TestCertificate::TestCertificate()
    : m_key(EVP_EC_gen("P-256"))
    , m_certificate(X509_new())
{
    constexpr long day = 24L * 60 * 60;
    X509* const certificate = m_certificate.get();
    require(m_key && certificate);
    require(X509_set_version(certificate, X509_VERSION_3) == 1);
    setRandomSerialNumber(certificate);
    setNames(certificate);
    // A day of grace, in case that the clock is set back.
    require(X509_gmtime_adj(X509_getm_notBefore(certificate), -day));
    require(X509_gmtime_adj(X509_getm_notAfter(certificate), 30 * day));
    require(X509_set_pubkey(certificate, m_key.get()) == 1);
    addExtension(NID_basic_constraints, "critical,CA:TRUE");
    addExtension(NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1,IP:::1");
    require(X509_sign(certificate, m_key.get(), EVP_sha256()) > 0);
}

void TestCertificate::addExtension(int nid, const char* value)
{
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, nid, value);
    const bool added = extension && X509_add_ext(m_certificate.get(), extension, -1) == 1;
    X509_EXTENSION_free(extension);
    require(added);
}

QByteArray TestCertificate::pem() const
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    require(memory && PEM_write_bio_X509(memory.get(), m_certificate.get()) == 1);
    char* data = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &data);
    return {data, length};
}

} // namespace varno
