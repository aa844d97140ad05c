#pragma once

#include <QObject>

#include <memory>

namespace varno {

/// Announces that the system asks the process to end, in the event loop of the thread that made it,
/// so that the process can end in good order. One object at a time; the default handling returns
/// with its destruction.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    static std::unique_ptr<TerminationSignals> install();

Q_SIGNALS:
    void received();

protected:
    TerminationSignals() = default;
};

} // namespace varno
