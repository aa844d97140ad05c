#pragma once

#include "core/Appearance.h"

#include <QColor>
#include <QPalette>

#include <variant>

class QWidget;

namespace varno {

/// The theme's colours as a palette. Set it on the topmost widget: all others read their colours
/// from the palette that they inherit, and follow its changes.
[[nodiscard]] QPalette themePalette(AppTheme theme);

/// A theme's colour out of a palette made by `themePalette`.
[[nodiscard]] QColor themeColor(const QPalette& palette, ColorRole role, double opacity = 1);

/// The standard colours, whose meaning is the same in every theme. Each theme has its own shade, so
/// that texts in them can be read on its grounds; the yellow is the same on both light ones.
enum class StandardColor {
    yellow,
    red,
    orange,
    green,
    primary, ///< black on a light theme, white on a dark one
};

[[nodiscard]] QColor standardColor(const QPalette& palette, StandardColor color,
                                   double opacity = 1);

/// The colour that something is drawn in: of the theme, or a standard colour.
using InkRole = std::variant<ColorRole, StandardColor>;

struct Ink {
    InkRole role = ColorRole::text;
    double opacity = 1;
};

[[nodiscard]] QColor inkColor(const QPalette& palette, const Ink& ink);

/// Sets the palette of a window, and thereby of all its widgets, and that of tool tips.
void setTheme(QWidget& window, AppTheme theme);

} // namespace varno
