#pragma once

#include "core/AppViewModel.h"
#include "demo/StandInService.h"
#include "platform/linux/SettingsPreferencesStore.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"

#include <QTemporaryDir>

#include <memory>

namespace varno {

/// What a demonstration takes place in: the stand-in for the model services, made-up keys in the
/// key ring, stores in a folder that is gone with it, and the controller that works with all of
/// them.
class DemonstrationSetting {
public:
    /// Null when the stand-in does not start, or there is no key ring, or one that holds the keys
    /// of a user: those must not be touched. Then `error` says it.
    static std::unique_ptr<DemonstrationSetting> open(QString& error);

    ~DemonstrationSetting();
    Q_DISABLE_COPY_MOVE(DemonstrationSetting)

    [[nodiscard]] StandInService& service() { return *m_service; }
    [[nodiscard]] AppViewModel& viewModel() { return m_viewModel; }

    /// A sentence for the reader on what is real here and what is not.
    [[nodiscard]] QString introduction() const;

private:
    explicit DemonstrationSetting(std::unique_ptr<StandInService> service);

    std::unique_ptr<StandInService> m_service;
    QTemporaryDir m_files;
    SettingsPreferencesStore m_preferences;
    HistoryStore m_history;
    ClaudeService m_claude;
    GeminiService m_gemini;
    AppViewModel m_viewModel;
};

} // namespace varno
