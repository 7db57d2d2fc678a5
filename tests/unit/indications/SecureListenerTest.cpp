// Delivery over https, against a TLS server that the test makes itself with a certificate of its own.
#include "DeliveryFakes.h"
#include "TemporaryDirectory.h"
#include "indications/ListenerConnection.h"

#include <arpa/inet.h>
#include <csignal>
#include <cstdio>
#include <memory>
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <stdexcept>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

template <auto Function>
struct Free {
    template <class Handle>
    void operator()(Handle* handle) const
    {
        Function(handle);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Free<X509_free>>;
using Context = std::unique_ptr<SSL_CTX, Free<SSL_CTX_free>>;
using Session = std::unique_ptr<SSL, Free<SSL_free>>;

// Signed by itself, for one name: an address or a host.
Certificate makeCertificate(EVP_PKEY* key, const char* alternativeName)
{
    Certificate certificate(X509_new());
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 3600);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME* name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("listener"), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, alternativeName);
    X509_add_ext(certificate.get(), extension, -1);
    X509_EXTENSION_free(extension);
    X509_sign(certificate.get(), key, EVP_sha256());
    return certificate;
}

// Takes one connection after another; answers one message on each whose handshake succeeds.
class SecureListener {
public:
    SecureListener(const char* alternativeName, const std::filesystem::path& certificateFile)
        : _key(EVP_EC_gen("P-256")), _certificate(makeCertificate(_key.get(), alternativeName)),
          _context(SSL_CTX_new(TLS_server_method())), _socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        std::FILE* file = std::fopen(certificateFile.c_str(), "w");
        PEM_write_X509(file, _certificate.get());
        std::fclose(file);
        SSL_CTX_use_certificate(_context.get(), _certificate.get());
        SSL_CTX_use_PrivateKey(_context.get(), _key.get());
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(_socket, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(_socket, 4) != 0 ||
            ::getsockname(_socket, reinterpret_cast<sockaddr*>(&address), &size) != 0)
            throw std::runtime_error("no port for the test's listener");
        _port = ntohs(address.sin_port);
        _thread = std::thread([this] { run(); });
    }
    ~SecureListener()
    {
        ::shutdown(_socket, SHUT_RDWR);
        _thread.join();
        ::close(_socket);
    }
    std::string url() const { return "https://127.0.0.1:" + std::to_string(_port) + "/"; }

private:
    void run()
    {
        for (int peer; (peer = ::accept(_socket, nullptr, nullptr)) >= 0; ::close(peer)) {
            const Session session(SSL_new(_context.get()));
            SSL_set_fd(session.get(), peer);
            char block[4096];
            std::string message;
            if (SSL_accept(session.get()) != 1) continue;
            while (message.find("</CIM>") == std::string::npos) {
                const int count = SSL_read(session.get(), block, sizeof block);
                if (count <= 0) break;
                message.append(block, static_cast<std::size_t>(count));
            }
            const std::string body =
                "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"0\" PROTOCOLVERSION=\"1.0\"><SIMPLEEXPRSP>"
                "<EXPMETHODRESPONSE NAME=\"ExportIndication\"/></SIMPLEEXPRSP></MESSAGE></CIM>";
            const std::string reply =
                "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
                body;
            SSL_write(session.get(), reply.data(), static_cast<int>(reply.size()));
            SSL_shutdown(session.get());
        }
    }

    Key _key;
    Certificate _certificate;
    Context _context;
    int _socket;
    int _port = 0;
    std::thread _thread;
};

class SecureListenerTest : public testing::Test {
protected:
    SecureListenerTest()
    {
        std::signal(SIGPIPE, SIG_IGN);
    } // as in the host; here it is the test's own thread that sends
    static ExportAnswer sendTo(const SecureListener& listener, const ConnectionOptions& options)
    {
        return connectTo(listener.url(), options)->send(exportMessage("0", "<INSTANCE CLASSNAME=\"X\">", ""), "0");
    }
    TemporaryDirectory _directory;
    ConnectionOptions _options;
};

} // namespace

TEST_F(SecureListenerTest, TrustsOnlyWhomItCanVerify)
{
    const SecureListener listener("IP:127.0.0.1", _directory.path() / "ca.pem");
    const ExportAnswer unknown = sendTo(listener, _options);
    EXPECT_EQ(unknown.outcome, ExportOutcome::Later);
    EXPECT_THAT(unknown.reason, testing::HasSubstr("certificate"));
    _options.caFile = (_directory.path() / "ca.pem").string();
    const ExportAnswer known = sendTo(listener, _options);
    EXPECT_EQ(known.outcome, ExportOutcome::Delivered) << known.reason;
}

TEST_F(SecureListenerTest, TrustsNoCertificateOfAnotherHost)
{
    const SecureListener listener("DNS:somewhere.else.example", _directory.path() / "ca.pem");
    _options.caFile = (_directory.path() / "ca.pem").string();
    EXPECT_EQ(sendTo(listener, _options).outcome, ExportOutcome::Later);
}

TEST_F(SecureListenerTest, TakesAnyoneWhenToldNotToVerify)
{
    const SecureListener listener("DNS:somewhere.else.example", _directory.path() / "ca.pem");
    _options.verifyPeer = false;
    const ExportAnswer answer = sendTo(listener, _options);
    EXPECT_EQ(answer.outcome, ExportOutcome::Delivered) << answer.reason;
}
