#pragma once

#include "app/RowButton.h"
#include "core/Appearance.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"

namespace varno {

/// A button that shows the name of the theme and opens the menu of themes. Arrows choose another
/// theme without it.
class ThemeMenuButton final : public RowButton {
    Q_OBJECT

public:
    explicit ThemeMenuButton(QWidget* parent = nullptr);

    void setTheme(AppTheme theme);

Q_SIGNALS:
    void themeChosen(varno::AppTheme theme);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void openMenu();
    [[nodiscard]] QPoint placeFor(const QSize& menu) const;

    AppTheme m_theme = AppTheme::cream;
    ThemedText m_name;
    SymbolView m_symbol;
};

} // namespace varno
