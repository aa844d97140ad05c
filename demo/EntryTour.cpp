#include "demo/EntryTour.h"

#include "core/AppViewModel.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>

#include <algorithm>
#include <cstdio>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

bool hasArrived(const AppViewModel& model, Scene::Moment moment)
{
    constexpr qsizetype someText = 600;
    const bool writing = model.isStreaming() && model.streamingContent().size() > someText;
    switch (moment) {
    case Scene::Moment::waiting:
        return model.isStreaming() && model.streamingContent().isEmpty();
    case Scene::Moment::writing:
        return writing && !model.streamingTOC().isEmpty();
    case Scene::Moment::writingBoth:
        return writing && model.tocIsLoading();
    case Scene::Moment::finished:
        break;
    }
    return !model.isStreaming() && !model.tocIsLoading();
}

} // namespace

EntryTour::EntryTour(AppViewModel& model, StandInService& service, QWidget& window, Camera& camera)
    : m_model(model)
    , m_service(service)
    , m_window(window)
    , m_camera(camera)
{
}

bool EntryTour::run()
{
    const QList<Scene> all = scenes();
    return std::ranges::all_of(all, [this](const Scene& scene) { return visit(scene); });
}

bool EntryTour::visit(const Scene& scene)
{
    if (!open(scene) || (scene.opensSection && !openSection()) ||
        (!scene.findText.isEmpty() && !find(scene.findText)) || (scene.selectsAll && !selectAll()))
        return m_camera.giveUp(u"The state “%1” does not come about."_s.arg(scene.name));
    const int before = m_camera.pictureCount();
    if (!takePictures(scene))
        return false;
    std::printf("%-18s %d pictures\n", qUtf8Printable(scene.name),
                m_camera.pictureCount() - before);
    std::fflush(stdout);
    return true;
}

bool EntryTour::open(const Scene& scene)
{
    m_model.setShowingSettings(false);
    m_model.newSearch();
    m_model.clearHistory(); // so that the entry is asked for again
    m_window.resize(scene.windowSize);
    m_service.setScript(scene.answer);
    m_service.setTOCScript(scene.contents);
    m_model.search(scene.query);
    return m_camera.waitUntil([&] { return hasArrived(m_model, scene.moment); }) &&
           m_camera.waitUntil([&] { return m_window.size() == scene.windowSize; });
}

bool EntryTour::openSection()
{
    if (m_model.streamingTOC().isEmpty())
        return false;
    m_model.navigateTo(m_model.streamingTOC().constFirst());
    return m_camera.waitUntil([this] { return hasArrived(m_model, Scene::Moment::finished); });
}

bool EntryTour::find(const QString& text)
{
    m_model.setShowingFind(true);
    const auto field = [] { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); };
    if (!m_camera.waitUntil([&] { return field() != nullptr; }))
        return false;
    typeText(*field(), text);
    return true;
}

bool EntryTour::selectAll()
{
    if (!m_camera.waitUntil([] { return QApplication::focusWidget() != nullptr; }))
        return false;
    typeKey(*QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
    return true;
}

bool EntryTour::takePictures(const Scene& scene)
{
    for (const auto& theme : RawValues<AppTheme>::cases) {
        for (const auto& size : RawValues<FontSize>::cases) {
            if (!takePicture(scene, theme.value, size.value))
                return false;
        }
    }
    return true;
}

bool EntryTour::takePicture(const Scene& scene, AppTheme theme, FontSize size)
{
    m_model.setTheme(theme);
    m_model.setFontSize(size);
    if (scene.endsBelow) {
        if (!m_camera.settle())
            return m_camera.giveUp(u"The page does not come to rest."_s);
        scrollToEnd(m_window);
    }
    if (scene.opensMenu && !openMenu())
        return m_camera.giveUp(u"The menu of the page does not open."_s);
    const bool isTaken =
        m_camera.take(u"%1-%2-%3"_s.arg(scene.name, rawValue(theme), rawValue(size)));
    if (QWidget* menu = QApplication::activePopupWidget())
        menu->close();
    return isTaken;
}

bool EntryTour::openMenu()
{
    QWidget* text = QApplication::focusWidget();
    if (!text)
        return false;
    const QPoint place(120, 90);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, text->mapToGlobal(place));
    QCoreApplication::sendEvent(text, &event);
    return m_camera.waitUntil([] { return QApplication::activePopupWidget() != nullptr; });
}

} // namespace varno
