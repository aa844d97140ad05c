#pragma once

#include "kit/PlainButton.h"
#include "recorder/ShortcutRefusal.h"
#include "shortcuts/KeyboardShortcuts.h"

#include <QPointer>

namespace varno {

class RefusalAlert;

/// A field that shows the shortcut of a name and, once clicked, records the next combination
/// pressed as the new one. It grabs the keyboard while it records.
///
/// Escape, Tab and a click elsewhere end recording without a change; Backspace and Delete clear.
class RecorderCocoa : public QWidget {
    Q_OBJECT

public:
    using Change = std::function<void(const std::optional<Shortcut>&)>;

    /// `shortcuts` outlives it. `onChange` is called with what the user records or clears; it may
    /// destroy the recorder.
    explicit RecorderCocoa(KeyboardShortcuts::Name name, Change onChange = {},
                           KeyboardShortcuts& shortcuts = KeyboardShortcuts::shared(),
                           QWidget* parent = nullptr);
    ~RecorderCocoa() override;

    [[nodiscard]] bool isRecording() const { return m_recording; }
    /// The shortcut as it is shown; empty while there is none, and while recording.
    [[nodiscard]] QString text() const;

    /// `menuItems` is called at each combination; the shortcuts of its items are refused.
    void setMenuItems(std::function<QList<MenuItem>()> menuItems);
    /// Checks combinations by the rules of that system; by default of the one that it runs on.
    void setSystem(const QOperatingSystemVersion& system) { m_system = system; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

public Q_SLOTS:
    void startRecording();
    void endRecording();
    void clear();

protected:
    /// Monitors the program's keys and clicks while recording.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void watch(bool watching);
    void take(const QKeyEvent& event);
    void consider(const Shortcut& shortcut);
    void refuse(const ShortcutRefusal& refusal, const Shortcut& shortcut);
    void alertClosed(bool forced, const Shortcut& shortcut);
    void accept(const std::optional<Shortcut>& shortcut);
    void showValue();
    [[nodiscard]] QString placeholder() const;

    KeyboardShortcuts::Name m_shortcutName;
    Change m_onChange;
    KeyboardShortcuts& m_shortcuts;
    std::function<QList<MenuItem>()> m_menuItems;
    QOperatingSystemVersion m_system = QOperatingSystemVersion::current();
    PlainButton m_clear;
    QPointer<RefusalAlert> m_alert;
    QString m_description;
    bool m_recording = false;
};

} // namespace varno
