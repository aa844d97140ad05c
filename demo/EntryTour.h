#pragma once

#include "core/Appearance.h"
#include "demo/Scene.h"
#include "demo/Stillness.h"

#include <QDir>

#include <functional>

class QWidget;

namespace varno {

class AppViewModel;
class DemonstrationSetting;

/// Takes pictures of a window on the screen, in every scene, theme and size of text. What it shows
/// comes from the stand-in service by way of the controller, as for any reader.
class ShotTour final : public QObject {
    Q_OBJECT

public:
    /// All of these outlive the tour. `folder` exists.
    ShotTour(DemonstrationSetting& setting, QWidget& window, const QDir& folder);

    /// Goes through all scenes, a line on standard output for each; handles events meanwhile.
    /// False when it could not come to its end, which `error` explains.
    [[nodiscard]] bool run();
    [[nodiscard]] const QString& error() const { return m_error; }
    [[nodiscard]] int pictureCount() const { return m_pictureCount; }

    /// Makes `run` return soon.
    void stop() { m_stopped = true; }

private:
    [[nodiscard]] bool visit(const Scene& scene);
    [[nodiscard]] bool settle();
    [[nodiscard]] bool open(const Scene& scene);
    [[nodiscard]] bool openSection();
    [[nodiscard]] bool find(const QString& text);
    [[nodiscard]] bool selectAll();
    [[nodiscard]] bool takePictures(const Scene& scene);
    [[nodiscard]] bool takePicture(const Scene& scene, AppTheme theme, FontSize size);
    void scrollToEnd();
    [[nodiscard]] bool waitUntil(const std::function<bool()>& condition) const;
    [[nodiscard]] bool giveUp(const QString& sentence);

    DemonstrationSetting& m_setting;
    AppViewModel& m_model;
    QWidget& m_window;
    QDir m_folder;
    Stillness m_stillness;
    QString m_error;
    int m_pictureCount = 0;
    bool m_stopped = false;
};

} // namespace varno
