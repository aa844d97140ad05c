#include "demo/DemonstrationSetting.h"

#include "platform/Platform.h"

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QStringList accounts()
{
    const KeychainService& keychain = KeychainService::shared();
    return {keychain.anthropicAccount, keychain.geminiAccount};
}

bool allAre(KeyPresence presence)
{
    const QStringList all = accounts();
    return std::all_of(all.begin(), all.end(), [presence](const QString& account) {
        return KeychainService::shared().presence(account) == presence;
    });
}

} // namespace

Result<std::unique_ptr<DemonstrationSetting>> DemonstrationSetting::open()
{
    auto started = StandInService::start();
    if (auto* failure = std::get_if<Failure>(&started))
        return std::move(*failure);
    std::unique_ptr<DemonstrationSetting> setting;
    if (allAre(KeyPresence::absent)) { // no user's keys are there, and none is touched
        setting.reset(new DemonstrationSetting(std::get<0>(std::move(started))));
        storeKeys();
    }
    if (!setting || !allAre(KeyPresence::present))
        return Failure{
            u"The demonstration needs a key ring of its own: start it with “make demo”."_s};
    return setting;
}

DemonstrationSetting::DemonstrationSetting(std::unique_ptr<StandInService> service)
    : m_service(std::move(service))
    , m_preferences(m_files.filePath(u"preferences.conf"_s))
    , m_history(m_files.filePath(u"session_history.json"_s))
    , m_claude(m_service->claudeEndpoint(), systemHttpSession(), KeychainService::shared())
    , m_gemini(m_service->geminiBaseURL(), systemHttpSession(), KeychainService::shared())
{
}

AppViewModel::Dependencies DemonstrationSetting::dependencies()
{
    return {
        .preferences = m_preferences, .history = m_history, .claude = m_claude, .gemini = m_gemini};
}

void DemonstrationSetting::endCalls() const
{
    m_claude.endCalls();
    m_gemini.endCalls();
}

void DemonstrationSetting::storeKeys()
{
    for (const QString& account : accounts())
        KeychainService::shared().save(u"demonstration-key"_s, account);
}

void DemonstrationSetting::removeKeys()
{
    for (const QString& account : accounts())
        KeychainService::shared().remove(account);
}

} // namespace varno
