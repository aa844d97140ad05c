#include "kit/Animation.h"

#include "kit/Layout.h"
#include "platform/fake/FakeAnimationSetting.h"
#include "platform/linux/PortalAnimationSetting.h"
#include "tests/Test.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QSignalSpy>

#include <memory>

using namespace std::chrono_literals;

namespace {

using Settings = QMap<QString, QVariantMap>;

/// Stands in for the desktop's portal on this session's bus.
class SettingsPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    Settings settings;

public Q_SLOTS:
    [[nodiscard]] Q_SCRIPTABLE Settings ReadAll(const QStringList& /*namespaces*/) const
    {
        return settings;
    }

Q_SIGNALS:
    Q_SCRIPTABLE void SettingChanged(const QString&, const QString&, const QDBusVariant&);
};

const auto portalService = u"org.freedesktop.portal.Desktop"_s;

} // namespace

class AnimationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void animationReachesItsEnd()
    {
        QWidget widget;
        widget.show();
        QList<double> values;
        Animation animation(
            widget, [&](double value) { values.append(value); }, m_setting);
        animation.start({.from = 10, .to = 20, .duration = 60ms});
        QCOMPARE(values, QList<double>{10});
        QTRY_VERIFY(!animation.isActive());
        QCOMPARE(values.last(), 20);
        QVERIFY(values.size() > 2);
        QVERIFY(std::ranges::is_sorted(values));
    }

    void animationRestsWhileHidden()
    {
        for (const bool isMinimised : {false, true}) {
            const InRow row(isMinimised);
            QWidget window;
            QWidget parent(&window);
            QWidget widget(&parent);
            int calls = 0;
            Animation animation(
                widget, [&](double) { ++calls; }, m_setting);
            animation.start({.duration = 50ms, .repeat = Motion::Repeat::backAndForth});
            QCOMPARE(calls, 1); // not shown yet
            QVERIFY(!animation.isMoving());
            window.show();
            QTRY_VERIFY(calls > 10);
            isMinimised ? window.showMinimized() : parent.hide();
            QTRY_VERIFY(!animation.isMoving());
            QVERIFY(animation.isActive());
            const int before = calls;
            QTest::qWait(60); // a mistake would show as calls
            QCOMPARE(calls, before);
            isMinimised ? window.showNormal() : parent.show();
            QTRY_VERIFY(calls > before + 5);
        }
    }

    void animationHonoursTheDesktop()
    {
        FakeAnimationSetting setting;
        setting.set(false);
        QWidget widget;
        widget.show();
        double value = -1;
        Animation animation(
            widget, [&](double now) { value = now; }, setting);
        animation.start({.from = 3, .to = 4, .duration = 1h});
        QCOMPARE(value, 4);
        QVERIFY(!animation.isActive());
        animation.start({.from = 3, .to = 4, .repeat = Motion::Repeat::backAndForth});
        QCOMPARE(value, 3);
        QVERIFY(animation.isActive() && !animation.isMoving());
        setting.set(true);
        QTRY_VERIFY(value > 3.2);
        setting.set(false);
        QCOMPARE(value, 3);
        QVERIFY(!animation.isMoving());
        setting.set(true);
        animation.start({.from = 3, .to = 4, .duration = 1h});
        setting.set(false);
        QCOMPARE(value, 4);
    }

    void animationEndsWithWhatItMoves()
    {
        for (const int fatalCall : {1, 3}) { // within start, within a tick
            const InRow row(fatalCall);
            auto widget = std::make_unique<QWidget>();
            widget->show();
            int calls = 0;
            std::unique_ptr<Animation> animation;
            const auto apply = [&](double) {
                if (++calls != fatalCall)
                    return;
                animation.reset();
                widget.reset();
            };
            animation = std::make_unique<Animation>(*widget, apply, m_setting);
            animation->start({.duration = 50ms, .repeat = Motion::Repeat::backAndForth});
            QTRY_VERIFY(!widget);
            QTest::qWait(50); // a mistake would show as calls, or as a use of freed memory
            QCOMPARE(calls, fatalCall);
        }
    }

    void portalTellsOfAnimations()
    {
        auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
        if (!bus.isConnected())
            QSKIP("no session bus");
        qDBusRegisterMetaType<Settings>();
        const auto gnome = std::pair(u"org.gnome.desktop.interface"_s, u"enable-animations"_s);
        const auto plasma = std::pair(u"org.kde.kdeglobals.KDE"_s, u"AnimationDurationFactor"_s);
        for (const auto& [key, off, on] : {std::tuple(gnome, QVariant(false), QVariant(true)),
                                           std::tuple(plasma, QVariant(0.0), QVariant(u"0.5"_s))}) {
            const InRow row(key.first, off);
            SettingsPortal portal;
            portal.settings = {{key.first, {{key.second, off}}}};
            QVERIFY(bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                                       QDBusConnection::ExportScriptableContents));
            QVERIFY(bus.registerService(portalService));

            PortalAnimationSetting setting;
            QSignalSpy spy(&setting, &AnimationSetting::changed);
            QVERIFY(setting.isEnabled()); // until there is an answer
            QTRY_COMPARE(spy.size(), 1);
            QVERIFY(!setting.isEnabled());
            Q_EMIT portal.SettingChanged(key.first, key.second, QDBusVariant(on));
            QTRY_COMPARE(spy.size(), 2);
            QVERIFY(setting.isEnabled());
            QVERIFY(bus.unregisterService(portalService));
        }
    }

private:
    FakeAnimationSetting m_setting;
};

VARNO_TEST(QApplication, AnimationTest)
#include "AnimationTest.moc"
