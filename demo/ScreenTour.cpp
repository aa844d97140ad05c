#include "demo/ScreenTour.h"

#include "core/AppViewModel.h"
#include "demo/DemonstrationSetting.h"
#include "demo/EntryLibrary.h"
#include "kit/ThemedText.h"
#include "recorder/RecorderCocoa.h"

#include <QAbstractButton>
#include <QApplication>

#include <algorithm>
#include <cstdio>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr quint32 scanCodeOfF4 = 70;
const Shortcut optionF4(Key::f4, Modifier::option);
const QOperatingSystemVersion oldSystem(QOperatingSystemVersion::MacOS, 15, 0);

} // namespace

ScreenTour::ScreenTour(AppViewModel& model, QWidget& window, Camera& camera)
    : m_model(model)
    , m_window(window)
    , m_camera(camera)
{
}

bool ScreenTour::run()
{
    const QList<ScreenScene> all = screenScenes();
    return std::ranges::all_of(all, [this](const ScreenScene& scene) { return visit(scene); });
}

bool ScreenTour::visit(const ScreenScene& scene)
{
    const int before = m_camera.pictureCount();
    if (!fillHistory(scene.hasSearches))
        return m_camera.giveUp(u"The searches for “%1” are not answered."_s.arg(scene.name));
    scene.hasKeys ? DemonstrationSetting::storeKeys() : DemonstrationSetting::removeKeys();
    for (const auto& theme : RawValues<AppTheme>::cases) {
        for (const auto& size : RawValues<FontSize>::cases) {
            if (size.value != FontSize::medium && !scene.everyTextSize)
                continue;
            m_model.setTheme(theme.value);
            m_model.setFontSize(size.value);
            if (!open(scene))
                return m_camera.giveUp(u"The state “%1” does not come about."_s.arg(scene.name));
            if (!m_camera.take(u"%1-%2-%3"_s.arg(scene.name, theme.raw, size.raw)))
                return false;
        }
    }
    std::printf("%-18s %d pictures\n", qUtf8Printable(scene.name),
                m_camera.pictureCount() - before);
    std::fflush(stdout);
    return true;
}

bool ScreenTour::fillHistory(bool wanted)
{
    m_model.clearHistory();
    if (!wanted)
        return true;
    DemonstrationSetting::storeKeys();
    for (const QString& title : EntryLibrary().titles()) {
        m_model.search(title);
        if (!m_camera.waitUntil([this] { return !m_model.isStreaming(); }))
            return false;
        m_model.newSearch();
    }
    return true;
}

bool ScreenTour::open(const ScreenScene& scene)
{
    if (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    m_model.setShowingSettings(!scene.isSettings);
    m_model.setShowingSettings(scene.isSettings);
    return m_camera.settle() &&
           std::ranges::all_of(scene.steps,
                               [this](const ScreenScene::Step& step) { return take(step); });
}

bool ScreenTour::take(const ScreenScene::Step& step)
{
    using Kind = ScreenScene::Step::Kind;
    auto* recorder = m_window.findChild<RecorderCocoa*>();
    switch (step.kind) {
    case Kind::press:
        return press(step.name);
    case Kind::type:
        if (QWidget* field = widgetNamed(step.name)) {
            field->setFocus();
            typeKey(*field, Qt::Key_A, Qt::ControlModifier);
            typeText(*field, step.text);
            return true;
        }
        return false;
    case Kind::await:
        return m_camera.waitUntil([&] { return shows(step.name); });
    case Kind::combine:
        typeKey(*recorder, Qt::Key_F4, Qt::AltModifier, {}, scanCodeOfF4);
        return m_camera.waitUntil([] { return QApplication::activeModalWidget() != nullptr; });
    case Kind::pretendMenu:
        recorder->setMenuItems([] { return QList<MenuItem>{{u"Close"_s, optionF4}}; });
        return true;
    case Kind::pretendOldSystem:
        recorder->setMenuItems({});
        recorder->setSystem(oldSystem);
        return true;
    case Kind::down:
        typeKey(*QApplication::focusWidget(), Qt::Key_Down);
        return true;
    case Kind::scrollToEnd:
        scrollToEnd(m_window);
        return true;
    }
    return false;
}

bool ScreenTour::press(const QString& name)
{
    QWidget* widget = nullptr;
    if (!m_camera.waitUntil([&] {
            widget = widgetNamed(name);
            return widget && widget->isEnabled();
        }))
        return false;
    widget->setFocus();
    typeKey(*widget, Qt::Key_Space);
    return true;
}

QWidget* ScreenTour::widgetNamed(const QString& name) const
{
    const QList<QWidget*> all = m_window.findChildren<QWidget*>();
    const auto found = std::ranges::find_if(all, [&name](const QWidget* widget) {
        return widget->isVisible() && widget->focusPolicy() != Qt::NoFocus &&
               widget->accessibleName().startsWith(name);
    });
    return found == all.end() ? nullptr : *found;
}

bool ScreenTour::shows(const QString& text) const
{
    const QList<QWidget*> all = m_window.findChildren<QWidget*>();
    return std::ranges::any_of(all, [&text](const QWidget* widget) {
        if (!widget->isVisible())
            return false;
        const auto* label = qobject_cast<const ThemedText*>(widget);
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        return (label && label->text() == text) || (button && button->text() == text);
    });
}

} // namespace varno
