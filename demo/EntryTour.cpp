#include "demo/ShotTour.h"

#include "demo/DemonstrationSetting.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCursor>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPixmap>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace varno {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

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

void press(QWidget& receiver, int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, text);
        QCoreApplication::sendEvent(&receiver, &event);
    }
}

} // namespace

ShotTour::ShotTour(DemonstrationSetting& setting, QWidget& window, const QDir& folder)
    : m_setting(setting)
    , m_model(setting.viewModel())
    , m_window(window)
    , m_folder(folder)
    , m_stillness(window)
{
    connect(&m_model, &AppViewModel::changed, &m_stillness, &Stillness::disturb);
}

bool ShotTour::run()
{
    if (!waitUntil([this] { return m_window.isActiveWindow(); }))
        return giveUp(u"The window does not become the active one."_s);
    // The pointer is to hover over nothing.
    const QRect screen = m_window.screen()->geometry();
    QCursor::setPos(screen.bottomRight());
    m_window.move(screen.topLeft());
    const QList<Scene> all = scenes();
    return std::ranges::all_of(all, [this](const Scene& scene) { return visit(scene); });
}

bool ShotTour::visit(const Scene& scene)
{
    if (!open(scene) || (scene.opensSection && !openSection()) ||
        (!scene.findText.isEmpty() && !find(scene.findText)) || (scene.selectsAll && !selectAll()))
        return giveUp(u"The state “%1” does not come about."_s.arg(scene.name));
    const int before = m_pictureCount;
    if (!takePictures(scene))
        return false;
    std::printf("%-18s %d pictures\n", qUtf8Printable(scene.name), m_pictureCount - before);
    std::fflush(stdout);
    return true;
}

bool ShotTour::open(const Scene& scene)
{
    m_model.newSearch();
    m_model.clearHistory(); // so that the entry is asked for again
    m_window.resize(scene.windowSize);
    m_setting.service().setScript(scene.answer);
    m_setting.service().setTOCScript(scene.contents);
    m_model.search(scene.query);
    return waitUntil([&] { return hasArrived(m_model, scene.moment); }) &&
           waitUntil([&] { return m_window.size() == scene.windowSize; });
}

bool ShotTour::openSection()
{
    if (m_model.streamingTOC().isEmpty())
        return false;
    m_model.navigateTo(m_model.streamingTOC().constFirst());
    return waitUntil([this] { return hasArrived(m_model, Scene::Moment::finished); });
}

bool ShotTour::find(const QString& text)
{
    m_model.setShowingFind(true);
    const auto field = [] { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); };
    if (!waitUntil([&] { return field() != nullptr; }))
        return false;
    for (const QChar character : text)
        press(*field(), 0, Qt::NoModifier, QString(character));
    return true;
}

bool ShotTour::selectAll()
{
    if (!waitUntil([] { return QApplication::focusWidget() != nullptr; }))
        return false;
    press(*QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier, {});
    return true;
}

bool ShotTour::takePictures(const Scene& scene)
{
    for (const auto& theme : RawValues<AppTheme>::cases) {
        for (const auto& size : RawValues<FontSize>::cases) {
            if (!takePicture(scene, theme.value, size.value))
                return false;
        }
    }
    return true;
}

bool ShotTour::takePicture(const Scene& scene, AppTheme theme, FontSize size)
{
    m_model.setTheme(theme);
    m_model.setFontSize(size);
    if (!settle())
        return giveUp(u"The window does not come to rest in the state “%1”."_s.arg(scene.name));
    if (scene.endsBelow) {
        scrollToEnd();
        if (!settle())
            return giveUp(u"The page does not scroll to its end."_s);
    }
    const QPixmap picture = m_window.screen()->grabWindow(m_window.winId());
    if (picture.size() != scene.windowSize)
        return giveUp(u"The screen does not give its picture of the window."_s);
    const QString path =
        m_folder.filePath(u"%1-%2-%3.png"_s.arg(scene.name, rawValue(theme), rawValue(size)));
    if (!picture.save(path))
        return giveUp(u"The file “%1” cannot be written."_s.arg(path));
    ++m_pictureCount;
    return true;
}

void ShotTour::scrollToEnd()
{
    for (const QAbstractScrollArea* area : m_window.findChildren<QAbstractScrollArea*>()) {
        QScrollBar& bar = *area->verticalScrollBar();
        bar.setValue(bar.maximum());
    }
}

bool ShotTour::settle()
{
    m_stillness.disturb();
    return waitUntil([this] { return m_stillness.isStill(); });
}

bool ShotTour::waitUntil(const std::function<bool()>& condition) const
{
    const QDeadlineTimer deadline(20s);
    QTimer beat;
    beat.start(10ms);
    while (!condition()) {
        if (m_stopped || deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool ShotTour::giveUp(const QString& sentence)
{
    m_error = m_stopped ? u"The tour was ended."_s : sentence;
    return false;
}

} // namespace varno
