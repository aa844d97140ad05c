#include "demo/DemonstrationSetting.h"

#include "platform/Platform.h"

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// Gives the key ring a made-up key for each service; false when it is not there to be filled.
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

} // namespace

std::unique_ptr<DemonstrationSetting> DemonstrationSetting::open(QString& error)
{
    auto service = StandInService::start({}, &error);
    if (!service)
        return nullptr;
    if (!fillKeyRing(KeychainService::shared())) {
        error = u"The demonstration needs a key ring of its own: start it with “make demo”."_s;
        return nullptr;
    }
    return std::unique_ptr<DemonstrationSetting>(new DemonstrationSetting(std::move(service)));
}

DemonstrationSetting::DemonstrationSetting(std::unique_ptr<StandInService> service)
    : m_service(std::move(service))
    , m_preferences(m_files.filePath(u"preferences.conf"_s))
    , m_history(m_files.filePath(u"session_history.json"_s))
    , m_claude(m_service->claudeEndpoint(), systemHttpSession(), KeychainService::shared())
    , m_gemini(m_service->geminiBaseURL(), systemHttpSession(), KeychainService::shared())
    , m_viewModel({.preferences = m_preferences,
                   .history = m_history,
                   .claude = m_claude,
                   .gemini = m_gemini})
{
}

DemonstrationSetting::~DemonstrationSetting()
{
    m_viewModel.prepareToQuit();
}

QString DemonstrationSetting::introduction() const
{
    return u"A demonstration: %1 is played by a stand-in on this machine, with a key ring of its "
           u"own."_s.arg(details(m_viewModel.aiModel()).displayName);
}

} // namespace varno
