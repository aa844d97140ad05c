#pragma once

#include "core/EntryStream.h"
#include "core/TOCRequest.h"

#include <QStringList>
#include <QTest>

#include <memory>

namespace varno {

using namespace Qt::StringLiterals;

/// What became of a stream.
struct Received {
    QStringList pieces;
    QString error; ///< empty after a good end

    [[nodiscard]] QString text() const { return pieces.join(QString()); }
};

inline Received receive(const std::unique_ptr<EntryStream>& stream)
{
    Received received;
    bool ended = false;
    QObject::connect(stream.get(), &EntryStream::piece, stream.get(),
                     [&](const QString& piece) { received.pieces.append(piece); });
    QObject::connect(stream.get(), &EntryStream::finished, stream.get(),
                     [&](const EntryStream::Outcome& outcome) {
                         if (const auto* failure = std::get_if<Failure>(&outcome))
                             received.error = failure->description;
                         ended = true;
                     });
    if (!QTest::qWaitFor([&] { return ended; }, patience))
        received.error = u"the stream did not end"_s;
    return received;
}

inline TOCRequest::Outcome receive(const std::unique_ptr<TOCRequest>& request)
{
    TOCRequest::Outcome received = Failure{u"the request did not end"_s};
    bool ended = false;
    QObject::connect(request.get(), &TOCRequest::finished, request.get(),
                     [&](const TOCRequest::Outcome& outcome) {
                         received = outcome;
                         ended = true;
                     });
    static_cast<void>(QTest::qWaitFor([&] { return ended; }, patience));
    return received;
}

} // namespace varno
