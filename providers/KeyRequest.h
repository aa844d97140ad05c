#pragma once

#include "platform/Background.h"

#include <QByteArray>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>

namespace varno {

/// One question for a secret, which all who ask for it at the same time share: the user may have to
/// answer it. Any thread. It is put when somebody waits first, and ends with the last who holds it.
class KeyRequest {
public:
    using Answer = std::optional<QByteArray>;
    using Question = std::function<Answer(std::stop_token stop)>;

    explicit KeyRequest(Question question);

    /// The answer; nothing when `stop` comes first, which ends nobody else's wait.
    [[nodiscard]] Answer wait(const std::stop_token& stop);

    /// Whether whoever asks now must put a question of their own.
    [[nodiscard]] bool isAnswered() const;

private:
    void put(const std::stop_token& stop);

    Question m_question;
    mutable std::mutex m_mutex;
    std::condition_variable_any m_answered;
    std::optional<Answer> m_answer;
    bool m_started = false;
    Background m_background; ///< last: its end is that of the question
};

} // namespace varno
