#pragma once

#include "demo/Camera.h"
#include "demo/ScreenScene.h"

namespace varno {

class AppViewModel;

/// Takes pictures of the search screen and of the settings, brought about by what a user would do.
class ScreenTour {
public:
    /// All of these outlive the tour; `camera` looks at `window`, which shows what `model` says.
    ScreenTour(AppViewModel& model, QWidget& window, Camera& camera);

    /// As that of the `EntryTour`.
    [[nodiscard]] bool run();

private:
    [[nodiscard]] bool visit(const ScreenScene& scene);
    [[nodiscard]] bool fillHistory(bool wanted);
    [[nodiscard]] bool open(const ScreenScene& scene);
    [[nodiscard]] bool take(const ScreenScene::Step& step);
    [[nodiscard]] bool press(const QString& name);
    [[nodiscard]] QWidget* widgetNamed(const QString& name) const;
    [[nodiscard]] bool shows(const QString& text) const;

    AppViewModel& m_model;
    QWidget& m_window;
    Camera& m_camera;
};

} // namespace varno
