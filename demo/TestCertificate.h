#pragma once

#include <QByteArray>

#include <openssl/types.h>

#include <memory>

namespace varno {

/// A new certificate for this machine's loopback addresses, signed by its own key, which is kept in
/// memory only.
class TestCertificate {
public:
    TestCertificate(); ///< throws std::runtime_error when the system has no randomness or memory

    [[nodiscard]] X509* certificate() const { return m_certificate.get(); }
    [[nodiscard]] EVP_PKEY* key() const { return m_key.get(); }
    [[nodiscard]] QByteArray pem() const;

private:
    struct Free {
        void operator()(X509* certificate) const;
        void operator()(EVP_PKEY* key) const;
    };

    void addExtension(int nid, const char* value);

    std::unique_ptr<EVP_PKEY, Free> m_key;
    std::unique_ptr<X509, Free> m_certificate;
};

} // namespace varno
