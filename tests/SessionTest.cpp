#include "core/Session.h"

#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

Page makePage(const QString& title, const QString& content = {})
{
    Page page;
    page.id = QUuid::createUuid();
    page.title = title;
    page.content = content;
    return page;
}

Page makeSection(const Page& parent, const QString& name, const QString& content)
{
    Page page = makePage(name, content);
    page.parentPageId = parent.id;
    page.parentSectionName = name;
    return page;
}

} // namespace

class SessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void emptySessionHasNoPage()
    {
        Session session;
        session.revisit(QUuid::createUuid());
        session.cutHistoryAfter(QUuid::createUuid());
        QVERIFY(!session.currentPage());
        QVERIFY(!session.rootPage());
        QVERIFY(session.navigationHistory.isEmpty());
    }

    void pushReplacesAndShowsAgain()
    {
        Session session;
        Page page = makePage(u"Rome"_s, u"old"_s);
        session.push(page);
        session.push(makePage(u"Carthage"_s));
        page.content = u"new"_s;
        session.push(page);
        QCOMPARE(session.pages.size(), 2);
        QCOMPARE(session.navigationHistory.size(), 3);
        QCOMPARE(session.currentPage()->content, u"new"_s);
        QCOMPARE(session.rootPage(), session.currentPage());
    }

    void revisitAppendsEvenTheLastPage()
    {
        Session session;
        const Page page = makePage(u"Rome"_s);
        session.push(page);
        session.revisit(page.id);
        session.revisit(QUuid::createUuid());
        QCOMPARE(session.navigationHistory, QList<QUuid>({page.id, page.id}));
    }

    void cutKeepsTheLastOccurrence()
    {
        Session session;
        const Page root = makePage(u"root"_s);
        const Page a = makePage(u"a"_s);
        session.push(root);
        session.push(a);
        session.push(makePage(u"b"_s));
        session.revisit(a.id);
        const QList<QUuid> whole = session.navigationHistory;
        session.cutHistoryAfter(a.id);
        QCOMPARE(session.navigationHistory, whole);
        session.cutHistoryAfter(root.id);
        QCOMPARE(session.navigationHistory, QList<QUuid>({root.id}));
    }

    void historyMayNameAPageThatIsGone()
    {
        Session session;
        session.navigationHistory = {QUuid::createUuid()};
        QVERIFY(!session.currentPage());
        QVERIFY(!session.rootPage());
    }

    void cachedSectionIsWrittenAndNamedExactly_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("found");
        QTest::newRow("exact") << u"Key Principles"_s << true;
        QTest::newRow("other case") << u"key principles"_s << false;
        QTest::newRow("never written") << u"Legacy"_s << false;
        QTest::newRow("of another parent") << u"Elsewhere"_s << false;
    }
    void cachedSectionIsWrittenAndNamedExactly()
    {
        QFETCH(QString, name);
        const Page root = makePage(u"Stoicism"_s, u"text"_s);
        Session session;
        session.push(root);
        session.push(makeSection(root, u"Legacy"_s, QString()));
        session.push(makeSection(root, u"Key Principles"_s, u"text"_s));
        session.push(makeSection(makePage(u"Other"_s), u"Elsewhere"_s, u"text"_s));
        const Page* page = session.cachedSectionPage(root.id, name);
        QTEST(page != nullptr, "found");
        QVERIFY(!page || page->parentSectionName == name);
    }
};

VARNO_TEST(QCoreApplication, SessionTest)
#include "SessionTest.moc"
