#pragma once

#include "core/AppViewModel.h"
#include "demo/StandInService.h"
#include "platform/linux/IniPreferencesStore.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"

#include <QTemporaryDir>

#include <memory>

namespace varno {

/// What a demonstration takes place in: the stand-in for the model services, made-up keys in the
/// key ring, and stores in a folder that is gone with it.
class DemonstrationSetting {
public:
    /// Fails when the stand-in does not start, or there is no key ring, or one that holds the keys
    /// of a user: those must not be touched.
    static Result<std::unique_ptr<DemonstrationSetting>> open();

    [[nodiscard]] StandInService& service() { return *m_service; }

    /// What a controller works with here, which does not outlive the setting.
    [[nodiscard]] AppViewModel::Dependencies dependencies();

    /// Ends the calls of the two clients.
    void endCalls() const;

    // The made-up keys.
    static void storeKeys();
    static void removeKeys();

private:
    explicit DemonstrationSetting(std::unique_ptr<StandInService> service);

    std::unique_ptr<StandInService> m_service;
    QTemporaryDir m_files;
    IniPreferencesStore m_preferences;
    HistoryStore m_history;
    ClaudeService m_claude;
    GeminiService m_gemini;
};

} // namespace varno
