#include "core/EntryStream.h"

#include "tests/Test.h"

#include <QSignalSpy>

#include <thread>

class EntryStreamTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void deliversInOrderUpToOneEnd()
    {
        EntryStream stream;
        QStringList received;
        connect(&stream, &EntryStream::piece, this,
                [&](const QString& text) { received.append(text); });
        connect(&stream, &EntryStream::finished, this, [&](const EntryStream::Outcome& end) {
            received.append(std::get<Failure>(end).description);
        });
        const QStringList expected = {u"a"_s, QString(), u"b"_s, u"lost"_s};
        for (const QString& text : expected.first(3))
            stream.sink().send(text);
        stream.sink().finish(Failure{u"lost"_s});
        stream.sink().finish(EntryStream::Completed());
        QVERIFY(received.isEmpty()); // it comes from the event loop
        QTRY_COMPARE(received, expected);
        stream.sink().finish(EntryStream::Completed());
        stream.sink().send(u"late"_s);
        QTest::qWait(20);
        QCOMPARE(received, expected);
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

    void mayBeDestroyedAtAnyMoment()
    {
        for (const QString& last : {u""_s, u"a"_s, u"ab."_s}) { // of what it still delivers
            const InRow row(last);
            auto stream = std::make_unique<EntryStream>();
            const EntryStream::Sink sink = stream->sink();
            QString received;
            const auto take = [&](const QString& text) {
                received += text;
                if (received == last)
                    stream.reset();
            };
            connect(stream.get(), &EntryStream::piece, this, take);
            connect(stream.get(), &EntryStream::finished, this, [&] { take(u"."_s); });
            sink.send(u"a"_s);
            if (last.isEmpty())
                stream.reset();
            sink.send(u"b"_s);
            sink.finish(EntryStream::Completed());
            QTRY_VERIFY(!stream);
            QTest::qWait(20);
            QCOMPARE(received, last);
        }
    }

    void producerOnAnotherThreadLosesNothing()
    {
        EntryStream stream;
        QString received;
        QSignalSpy ended(&stream, &EntryStream::finished);
        connect(&stream, &EntryStream::piece, this, [&](const QString& text) {
            QCOMPARE(QThread::currentThread(), thread());
            received += text;
        });
        QString expected;
        for (int i = 0; i < 20'000; ++i)
            expected += QString::number(i) + u' ';
        const std::jthread producer([words = expected.split(u' '), sink = stream.sink()] {
            for (const QString& word : words)
                sink.send(word);
            sink.finish(EntryStream::Completed());
        });
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(received, expected.remove(u' '));
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
