#pragma once

#include "core/Appearance.h"
#include "demo/Camera.h"
#include "demo/Scene.h"

namespace varno {

class AppViewModel;
class StandInService;

/// Takes pictures of the entry screen in every scene, theme and size of text. What it shows comes
/// from the stand-in service by way of the controller, as for any reader.
class EntryTour {
public:
    /// All of these outlive the tour; `camera` looks at `window`, which shows what `model` says.
    EntryTour(AppViewModel& model, StandInService& service, QWidget& window, Camera& camera);

    /// Goes through all scenes, a line on standard output for each; handles events meanwhile.
    /// False when it could not come to its end, which the camera explains.
    [[nodiscard]] bool run();

private:
    [[nodiscard]] bool visit(const Scene& scene);
    [[nodiscard]] bool open(const Scene& scene);
    [[nodiscard]] bool openSection();
    [[nodiscard]] bool find(const QString& text);
    [[nodiscard]] bool selectAll();
    [[nodiscard]] bool openMenu();
    [[nodiscard]] bool takePictures(const Scene& scene);
    [[nodiscard]] bool takePicture(const Scene& scene, AppTheme theme, FontSize size);

    AppViewModel& m_model;
    StandInService& m_service;
    QWidget& m_window;
    Camera& m_camera;
};

} // namespace varno
