#include "demo/StandInService.h"
#include "platform/TerminationSignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <optional>

namespace {

using namespace Qt::StringLiterals;
using varno::StandInService;

int fail(const QString& reason)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(reason));
    return 1;
}

std::optional<int> number(const QString& text, int highest)
{
    bool valid = false;
    const int value = text.toInt(&valid);
    return valid && value >= 0 && value <= highest ? std::optional(value) : std::nullopt;
}

void printEndpoints(const StandInService& service)
{
    std::printf("Anthropic: %s\n", service.claudeEndpoint().constData());
    std::printf("Gemini:    %s\n", service.geminiBaseURL().constData());
    if (!service.certificateFile().isEmpty())
        std::printf("Trust:     %s\n", qUtf8Printable(service.certificateFile()));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"A model service on this machine that answers from a small library of entries."_s);
    const QCommandLineOption address(u"address"_s, u"Loopback address to listen on."_s, u"A"_s,
                                     u"127.0.0.1"_s);
    const QCommandLineOption port(u"port"_s, u"Port; 0 lets the system choose."_s, u"N"_s, u"0"_s);
    const QCommandLineOption tls(u"tls"_s, u"Speak TLS with a certificate made for this run."_s);
    const QCommandLineOption pace(u"pace"_s, u"Milliseconds between two events."_s, u"MS"_s,
                                  u"0"_s);
    parser.addOptions({address, port, tls, pace});
    parser.addHelpOption();
    parser.process(application);

    const std::optional<int> portNumber = number(parser.value(port), 65535);
    const std::optional<int> milliseconds = number(parser.value(pace), 60'000);
    if (!portNumber || !milliseconds)
        return fail(u"A port is a number up to 65535, and the pace one up to 60000."_s);

    const auto started = StandInService::start(
        {.address = parser.value(address), .port = *portNumber, .tls = parser.isSet(tls)});
    if (const auto* failure = std::get_if<varno::Failure>(&started))
        return fail(failure->description);
    StandInService& service = *std::get<std::unique_ptr<StandInService>>(started);
    service.setScript({.pace = std::chrono::milliseconds(*milliseconds)});

    const auto termination = varno::TerminationSignals::install();
    QObject::connect(termination.get(), &varno::TerminationSignals::received, &application,
                     &QCoreApplication::quit);
    printEndpoints(service);
    return QCoreApplication::exec();
}
