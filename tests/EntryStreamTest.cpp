#include "core/EntryStream.h"

#include "tests/TestMain.h"

#include <QSignalSpy>

#include <thread>

using namespace varno;
using namespace Qt::StringLiterals;

class EntryStreamTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void deliversInOrderFromTheEventLoop()
    {
        EntryStream stream;
        QStringList pieces;
        std::optional<EntryStream::Outcome> outcome;
        connect(&stream, &EntryStream::piece, this, [&](const QString& text) {
            QVERIFY(!outcome);
            pieces.append(text);
        });
        connect(&stream, &EntryStream::finished, this,
                [&](const EntryStream::Outcome& end) { outcome = end; });
        stream.sink().send(u"a"_s);
        stream.sink().send(QString());
        stream.sink().send(u"b"_s);
        stream.sink().finish(Failure{u"lost"_s});
        QVERIFY(pieces.isEmpty());
        QTRY_VERIFY(outcome);
        QCOMPARE(pieces, QStringList({u"a"_s, QString(), u"b"_s}));
        QCOMPARE(std::get<Failure>(*outcome).description, u"lost"_s);
    }

    void keepsTheOrderAroundANestedEventLoop()
    {
        EntryStream stream;
        QString received;
        connect(&stream, &EntryStream::piece, this, [&](const QString& text) {
            if (text == u"a"_s) {
                stream.sink().send(u"c"_s);
                QCoreApplication::processEvents();
            }
            received += text;
        });
        connect(&stream, &EntryStream::finished, this, [&] { received += u"."_s; });
        stream.sink().send(u"a"_s);
        stream.sink().send(u"b"_s);
        QTRY_COMPARE(received, u"abc"_s);
        stream.sink().finish(EntryStream::Completed());
        QTRY_COMPARE(received, u"abc."_s);
    }

    void finishesOnce()
    {
        EntryStream stream;
        QSignalSpy finished(&stream, &EntryStream::finished);
        stream.sink().finish(EntryStream::Completed());
        stream.sink().finish(EntryStream::Completed());
        QVERIFY(finished.wait());
        stream.sink().finish(EntryStream::Completed());
        stream.sink().send(u"late"_s);
        QSignalSpy pieces(&stream, &EntryStream::piece);
        QTest::qWait(20);
        QCOMPARE(finished.size(), 1);
        QCOMPARE(pieces.size(), 0);
    }

    void nothingAfterDestruction()
    {
        auto stream = std::make_unique<EntryStream>();
        const EntryStream::Sink sink = stream->sink();
        int signalCount = 0;
        connect(stream.get(), &EntryStream::piece, this, [&] { ++signalCount; });
        connect(stream.get(), &EntryStream::finished, this, [&] { ++signalCount; });
        sink.send(u"before"_s);
        stream.reset();
        sink.send(u"after"_s);
        sink.finish(EntryStream::Completed());
        QTest::qWait(20);
        QCOMPARE(signalCount, 0);
    }

    void mayBeDestroyedByItsOwnSlot_data()
    {
        QTest::addColumn<bool>("atEnd");
        QTest::newRow("on a piece") << false;
        QTest::newRow("on the end") << true;
    }
    void mayBeDestroyedByItsOwnSlot()
    {
        QFETCH(bool, atEnd);
        auto stream = std::make_unique<EntryStream>();
        int pieces = 0;
        int ends = 0;
        connect(stream.get(), &EntryStream::piece, this, [&] {
            ++pieces;
            if (!atEnd)
                stream.reset();
        });
        connect(stream.get(), &EntryStream::finished, this, [&] {
            ++ends;
            stream.reset();
        });
        for (int i = 0; i < 3; ++i)
            stream->sink().send(u"x"_s);
        stream->sink().finish(EntryStream::Completed());
        QTRY_VERIFY(!stream);
        QTest::qWait(20);
        QCOMPARE(pieces, atEnd ? 3 : 1);
        QCOMPARE(ends, atEnd ? 1 : 0);
    }

    void producerOnAnotherThreadLosesNothing()
    {
        constexpr int count = 20'000;
        EntryStream stream;
        QString received;
        bool ended = false;
        connect(&stream, &EntryStream::piece, this, [&](const QString& text) {
            QCOMPARE(QThread::currentThread(), thread());
            received += text;
        });
        connect(&stream, &EntryStream::finished, this, [&] { ended = true; });
        const std::jthread producer([sink = stream.sink()] {
            for (int i = 0; i < count; ++i)
                sink.send(QString::number(i) + u' ');
            sink.finish(EntryStream::Completed());
        });
        QTRY_VERIFY(ended);
        QString expected;
        for (int i = 0; i < count; ++i)
            expected += QString::number(i) + u' ';
        QCOMPARE(received, expected);
    }

    void abandonedWhileItsProducerRuns()
    {
        for (int round = 0; round < 200; ++round) {
            auto stream = std::make_unique<EntryStream>();
            const std::jthread producer([sink = stream->sink()] {
                for (int i = 0; i < 200; ++i)
                    sink.send(u"piece"_s);
                sink.finish(EntryStream::Completed());
            });
            bool gone = false;
            connect(stream.get(), &EntryStream::piece, this, [&] { QVERIFY(!gone); });
            if (round % 2)
                QCoreApplication::processEvents();
            stream.reset();
            gone = true;
            QCoreApplication::processEvents();
        }
    }
};

VARNO_TEST(QCoreApplication, EntryStreamTest)
#include "EntryStreamTest.moc"
