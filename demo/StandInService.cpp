#include "demo/StandInService.h"

#include "demo/ModelAnswer.h"
#include "demo/ReplyPlayer.h"
#include "demo/ScriptedReply.h"
#include "demo/TestCertificate.h"

#include <QFile>
#include <QTemporaryDir>

#include <arpa/inet.h>
#include <httplib.h>

#include <mutex>
#include <stop_token>
#include <thread>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr std::size_t repliesAtATime = 64;

bool isLoopback(const QString& address)
{
    const QByteArray text = address.toLatin1();
    in_addr four = {};
    if (::inet_pton(AF_INET, text.constData(), &four) == 1)
        return ntohl(four.s_addr) >> 24 == IN_LOOPBACKNET;
    in6_addr six = {};
    return ::inet_pton(AF_INET6, text.constData(), &six) == 1 && IN6_IS_ADDR_LOOPBACK(&six);
}

ReceivedRequest received(const httplib::Request& request)
{
    ReceivedRequest copy{.path = QByteArray::fromStdString(request.target),
                         .headers = {},
                         .body = QByteArray::fromStdString(request.body)};
    for (const auto& [name, value] : request.headers) {
        // The library adds the addresses of the connection in the form of headers.
        if (!name.starts_with("REMOTE_") && !name.starts_with("LOCAL_"))
            copy.headers.append(
                {QByteArray::fromStdString(name), QByteArray::fromStdString(value)});
    }
    return copy;
}

const Dialect* dialectOf(const QByteArray& path)
{
    if (path == "/v1/messages" || path.startsWith("/v1/messages?"))
        return &claudeDialect();
    return path.startsWith("/v1beta/models/") ? &geminiDialect() : nullptr;
}

} // namespace

QByteArray ReceivedRequest::header(const QByteArray& name) const
{
    for (const auto& [otherName, value] : headers) {
        if (otherName.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

class StandInService::Implementation {
public:
    ~Implementation()
    {
        m_stop.request_stop();
        if (m_thread.joinable())
            m_server->stop();
    }

    /// Returns what is in the way, or nothing.
    QString listen(const Settings& settings);

    [[nodiscard]] const QByteArray& origin() const { return m_origin; }
    [[nodiscard]] QString certificateFile() const
    {
        return m_folder ? m_folder->filePath(u"certificate.pem"_s) : QString();
    }

    void setScript(const Script& script, bool streamed)
    {
        const std::scoped_lock lock(m_mutex);
        (streamed ? m_script : m_tocScript) = script;
    }

    [[nodiscard]] QList<ReceivedRequest> requests() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_requests;
    }

private:
    bool makeServer(const Settings& settings);
    void configureServer();
    int bind(const std::string& host, int port);
    void answer(const httplib::Request& request, httplib::Response& response);
    void send(const ScriptedReply& reply, const Script& script, httplib::Response& response);

    [[nodiscard]] Script scriptFor(const ModelCall& call) const
    {
        const std::scoped_lock lock(m_mutex);
        return call.streamed ? m_script : m_tocScript;
    }

    const EntryLibrary m_library;
    std::optional<QTemporaryDir> m_folder;
    QByteArray m_origin;
    std::stop_source m_stop;
    mutable std::mutex m_mutex; ///< guards the scripts and the requests
    Script m_script;
    Script m_tocScript;
    QList<ReceivedRequest> m_requests;
    std::unique_ptr<httplib::Server> m_server;
    std::jthread m_thread;
};

bool StandInService::Implementation::makeServer(const Settings& settings)
{
    if (!settings.tls) {
        m_server = std::make_unique<httplib::Server>();
        return true;
    }
    const TestCertificate certificate;
    auto server =
        std::make_unique<httplib::SSLServer>(certificate.certificate(), certificate.key());
    if (settings.isOldTls && server->is_valid()) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations" // older versions know no other
        SSL_CTX_set_max_proto_version(server->ssl_context(), TLS1_2_VERSION);
#pragma GCC diagnostic pop
    }
    m_server = std::move(server);
    m_folder.emplace();
    QFile file(certificateFile());
    const QByteArray pem = certificate.pem();
    return m_server->is_valid() && file.open(QIODevice::WriteOnly) && file.write(pem) == pem.size();
}

void StandInService::Implementation::configureServer()
{
    m_server->new_task_queue = [] { return new httplib::ThreadPool(repliesAtATime); };
    m_server->set_tcp_nodelay(true);
    m_server->set_keep_alive_max_count(1);
    // Not shared with another process that listens on the same port, as the library would have it.
    m_server->set_socket_options([](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    });
    m_server->Post(".*", [this](const httplib::Request& request, httplib::Response& response) {
        answer(request, response);
    });
}

/// Returns the port that was bound, or a negative number.
int StandInService::Implementation::bind(const std::string& host, int port)
{
    if (port == 0)
        return m_server->bind_to_any_port(host);
    return m_server->bind_to_port(host, port) ? port : -1;
}

QString StandInService::Implementation::listen(const Settings& settings)
{
    // The name is this machine's by convention, whatever the name service says.
    const bool byName = settings.address.compare("localhost"_L1, Qt::CaseInsensitive) == 0;
    const QString address = byName ? u"127.0.0.1"_s : settings.address;
    if (!isLoopback(address))
        return u"The stand-in service listens on loopback addresses only, and %1 is none."_s.arg(
            settings.address);
    if (!makeServer(settings))
        return u"The certificate for TLS could not be made."_s;
    configureServer();
    const int port = bind(address.toStdString(), settings.port);
    if (port < 0)
        return u"The stand-in service cannot listen on port %1 of %2."_s.arg(settings.port)
            .arg(settings.address);
    const QString shown = address.contains(u':') ? u'[' + address + u']' : settings.address;
    m_origin =
        (settings.tls ? "https://" : "http://") + shown.toLatin1() + ':' + QByteArray::number(port);

    m_thread = std::jthread([this] { m_server->listen_after_bind(); });
    while (!m_server->is_running()) // before that, a stop would get lost
        std::this_thread::yield();
    return {};
}

void StandInService::Implementation::answer(const httplib::Request& request,
                                            httplib::Response& response)
{
    const ReceivedRequest copy = received(request);
    {
        const std::scoped_lock lock(m_mutex);
        m_requests.append(copy);
    }
    const Dialect* dialect = dialectOf(copy.path);
    if (!dialect) {
        response.status = 404;
        return;
    }
    const auto read = dialect->read(copy);
    if (const auto* refusal = std::get_if<Refusal>(&read)) {
        send(ScriptedReply::compose(*dialect, *refusal), {}, response);
        return;
    }
    const auto& call = std::get<ModelCall>(read);
    const Script script = scriptFor(call);
    const QString text = modelAnswer(m_library, call.prompt);
    send(ScriptedReply::compose(*dialect, call, text, script), script, response);
}

void StandInService::Implementation::send(const ScriptedReply& reply, const Script& script,
                                          httplib::Response& response)
{
    response.status = reply.statusCode;
    if (reply.events.isEmpty()) {
        response.set_content(std::string(), reply.contentType.toStdString());
        return;
    }
    response.set_chunked_content_provider(
        reply.contentType.toStdString(),
        [this, events = reply.events, script](std::size_t, httplib::DataSink& sink) {
            const auto write = [&sink](QByteArrayView bytes) {
                return sink.write(bytes.data(), static_cast<std::size_t>(bytes.size()));
            };
            const bool complete = ReplyPlayer(script, write, m_stop.get_token()).play(events);
            if (complete)
                sink.done();
            return complete;
        });
}

Result<std::unique_ptr<StandInService>> StandInService::start(const Settings& settings)
{
    auto implementation = std::make_unique<Implementation>();
    if (const QString problem = implementation->listen(settings); !problem.isEmpty())
        return Failure{problem};
    return std::unique_ptr<StandInService>(new StandInService(std::move(implementation)));
}

StandInService::StandInService(std::unique_ptr<Implementation> implementation)
    : m_implementation(std::move(implementation))
{
}

StandInService::~StandInService() = default;

QByteArray StandInService::claudeEndpoint() const
{
    return m_implementation->origin() + "/v1/messages";
}

QByteArray StandInService::geminiBaseURL() const
{
    return m_implementation->origin() + "/v1beta/models";
}

QString StandInService::certificateFile() const
{
    return m_implementation->certificateFile();
}

void StandInService::setScript(const Script& script)
{
    m_implementation->setScript(script, true);
}

void StandInService::setTOCScript(const Script& script)
{
    m_implementation->setScript(script, false);
}

QList<ReceivedRequest> StandInService::requests() const
{
    return m_implementation->requests();
}

} // namespace varno
