#pragma once

#include "kit/ThemedText.h"

#include <QAbstractButton>
#include <QList>
#include <QPoint>
#include <QStringList>

#include <algorithm>

namespace varno {

/// The widgets of that type that are on show in `screen`, from top to bottom and left to right.
template <typename Widget>
QList<Widget*> shown(const QWidget& screen)
{
    QList<Widget*> widgets = screen.findChildren<Widget*>();
    widgets.removeIf([](const Widget* widget) { return !widget->isVisible(); });
    const auto place = [&screen](const Widget* widget) {
        const QPoint middle = widget->mapTo(&screen, widget->rect().center());
        return std::pair(middle.y(), middle.x());
    };
    std::ranges::stable_sort(widgets, {}, place);
    return widgets;
}

/// What stands there to read, buttons left out.
inline QStringList shownTexts(const QWidget& screen)
{
    QStringList texts;
    for (const ThemedText* text : shown<ThemedText>(screen))
        texts.append(text->text());
    return texts;
}

/// Null when no such text is on show.
inline ThemedText* shownText(const QWidget& screen, const QString& text)
{
    const QList<ThemedText*> all = shown<ThemedText>(screen);
    const auto found = std::ranges::find(all, text, &ThemedText::text);
    return found == all.end() ? nullptr : *found;
}

/// The first button of that name; null when none is on show.
template <typename Button = QAbstractButton>
Button* shownButton(const QWidget& screen, const QString& name)
{
    const QList<Button*> all = shown<Button>(screen);
    const auto found = std::ranges::find(all, name, &QWidget::accessibleName);
    return found == all.end() ? nullptr : *found;
}

} // namespace varno
