#pragma once

#include "kit/PressableButton.h"
#include "kit/ThemedText.h"

namespace varno {

/// An entry of the table of contents: its number and the name of the section, which wraps.
class TOCEntry final : public PressableButton {
    Q_OBJECT

public:
    static constexpr int numberWidth = 22;

    TOCEntry(int number, const QString& section, QWidget* parent = nullptr);

    [[nodiscard]] QString section() const { return m_section; }

    /// Marks the section that is on show.
    void setActive(bool active);
    [[nodiscard]] bool isActive() const { return m_active; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_section;
    bool m_active = false;
    ThemedText m_number;
    ThemedText m_name;
};

} // namespace varno
