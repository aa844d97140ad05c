#include "demo/Demonstration.h"
#include "platform/Platform.h"
#include "platform/TerminationSignals.h"
#include "platform/linux/SettingsPreferencesStore.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr int usageError = 2;

int fail(const QString& sentence, int status = 1)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(sentence));
    return status;
}

/// The model whose identifier contains `name`.
std::optional<AIModel> modelNamed(const QString& name)
{
    for (const auto& known : RawValues<AIModel>::cases) {
        if (QString(known.raw).contains(name, Qt::CaseInsensitive))
            return known.value;
    }
    return std::nullopt;
}

QString modelNames()
{
    QStringList names;
    for (const auto& known : RawValues<AIModel>::cases)
        names.append(known.raw);
    return names.join(u", "_s);
}

/// Gives the key ring a made-up key for each service. False when it is not there, or is one that
/// is in use: its keys must not be touched.
bool fillKeyRing(const KeychainService& keychain)
{
    const QStringList accounts = {keychain.anthropicAccount, keychain.geminiAccount};
    const auto absent = [&](const QString& account) {
        return keychain.presence(account) == KeyPresence::absent;
    };
    if (!std::all_of(accounts.begin(), accounts.end(), absent))
        return false;
    for (const QString& account : accounts)
        keychain.save(u"demonstration-key"_s, account);
    return std::none_of(accounts.begin(), accounts.end(), absent);
}

int run(const QCoreApplication& application)
{
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2 || arguments.size() > 3 || arguments.at(1).trimmed().isEmpty())
        return fail(u"Usage: varno-demo QUERY [MODEL]\nModels: "_s + modelNames(), usageError);
    const std::optional<AIModel> model =
        arguments.size() == 3 ? modelNamed(arguments.at(2)) : AIModel::sonnet;
    if (!model)
        return fail(u"There is no such model. The models are: "_s + modelNames(), usageError);

    QString error;
    const auto service = StandInService::start({}, &error);
    if (!service)
        return fail(error);
    service->setScript({.pace = std::chrono::milliseconds(12)});

    const KeychainService& keychain = KeychainService::shared();
    if (!fillKeyRing(keychain))
        return fail(u"The demonstration needs a key ring of its own: start it with “make demo”."_s);

    const QTemporaryDir files;
    SettingsPreferencesStore preferences(files.filePath(u"preferences.conf"_s));
    HistoryStore history(files.filePath(u"session_history.json"_s));
    const ClaudeService claude(service->claudeEndpoint(), systemHttpSession(), keychain);
    const GeminiService gemini(service->geminiBaseURL(), systemHttpSession(), keychain);
    AppViewModel viewModel(
        {.preferences = preferences, .history = history, .claude = claude, .gemini = gemini});
    viewModel.setAIModel(*model);

    QTextStream terminal(stdout);
    terminal << "A demonstration: " << details(*model).displayName
             << " is played by a stand-in on this machine, with a key ring of its own.\n\n";
    Demonstration demonstration(viewModel, *service, terminal);
    QObject::connect(&demonstration, &Demonstration::finished, &application,
                     [](const std::optional<QString>& message) {
                         QCoreApplication::exit(message ? fail(*message) : 0);
                     });
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &application,
                     [] { QCoreApplication::exit(1); });
    demonstration.start(arguments.at(1));
    const int status = QCoreApplication::exec();
    viewModel.prepareToQuit();
    return status;
}

} // namespace
} // namespace varno

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return varno::run(application);
}
