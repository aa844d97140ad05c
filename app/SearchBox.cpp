#include "app/SearchBox.h"

#include "kit/InputLimit.h"
#include "kit/Layout.h"
#include "kit/RoundedShape.h"

#include <QEvent>
#include <QPainter>

#include <cmath>
#include <numbers>

namespace varno {
namespace {

constexpr double radius = 8; // of the corners

constexpr double shadowOpacity = 0.08;
constexpr double shadowRadius = 6;
constexpr double shadowOffset = 2;
static_assert(shadowRadius + shadowOffset < SearchBox::shadowRoom);

/// What is left of a shadow at a distance from the edge of what casts it.
double shadowStrength(double distance)
{
    constexpr double deviation = shadowRadius / 2;
    return std::erfc(distance / (deviation * std::numbers::sqrt2)) / 2;
}

} // namespace

SearchBox::SearchBox(QWidget* parent)
    : QWidget(parent)
    , m_symbol(Symbol::magnifyingGlass, {.size = 15, .opacity = 0.45})
    , m_clear(Symbol::xmarkCircleFill, {.symbol = {.size = 15, .opacity = 0.3}})
{
    setLayout(row({.spacing = 12, .horizontal = 20 + shadowRoom, .vertical = 14 + shadowRoom},
                  {
                      m_symbol,
                      grow(m_field),
                      m_clear,
                  }));
    setFocusProxy(&m_field);

    m_field.setFrame(false);
    m_field.setMaxLength(longestSearch);
    m_field.setValidator(new InputLimit(costliestSearch, &m_field));
    m_field.setPlaceholderText(tr("Search anything…"));
    m_field.setAccessibleName(tr("Search"));
    m_field.installEventFilter(this);
    m_clear.setAccessibleName(tr("Clear the search"));
    m_clear.hide();
    takeColors();

    connect(&m_field, &QLineEdit::textChanged, this, [this](const QString& query) {
        m_clear.setVisible(!query.isEmpty());
        Q_EMIT queryChanged(query);
    });
    connect(&m_field, &QLineEdit::textEdited, this, &SearchBox::queryTyped);
    connect(&m_field, &QLineEdit::returnPressed, this, &SearchBox::submitted);
    connect(&m_clear, &PlainButton::clicked, this, [this] {
        m_field.clear();
        m_field.setFocus();
    });
}

void SearchBox::setTextSize(int size)
{
    m_field.setFont(varno::font({.size = static_cast<double>(size)}));
    m_field.setFixedHeight(m_field.fontMetrics().height() + 2);
}

QSize SearchBox::sizeHint() const
{
    return {mostWidth + 2 * shadowRoom, layout()->sizeHint().height()};
}

void SearchBox::takeColors()
{
    QPalette colors = palette();
    colors.setBrush(QPalette::Base, Qt::NoBrush);
    colors.setColor(QPalette::PlaceholderText, themeColor(palette(), ColorRole::text, 0.38));
    m_field.setPalette(colors);
}

void SearchBox::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColors();
}

bool SearchBox::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    return QWidget::eventFilter(object, event);
}

void SearchBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRectF frame =
        QRectF(rect()).marginsRemoved({shadowRoom, shadowRoom, shadowRoom, shadowRoom});
    paintShadow(painter, frame);
    const bool focused = m_field.hasFocus();
    outlineRounded(painter, frame, radius, focused ? 1.5 : 1,
                   themeColor(palette(), focused ? ColorRole::accent : ColorRole::border),
                   themeColor(palette(), ColorRole::background));
}

void SearchBox::paintShadow(QPainter& painter, const QRectF& frame)
{
    if (m_shadow.deviceIndependentSize() != QSizeF(size()) ||
        m_shadow.devicePixelRatio() != devicePixelRatio())
        m_shadow = shadow(frame);
    painter.drawPixmap(0, 0, m_shadow);
}

/// Line around line, each as pale as the shadow is there.
QPixmap SearchBox::shadow(const QRectF& frame) const
{
    QPixmap image(size() * devicePixelRatio());
    image.setDevicePixelRatio(devicePixelRatio());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QRectF shadow = frame.translated(0, shadowOffset);
    for (int line = 0; line < shadowOffset + shadowRadius; ++line) {
        const double edge = line + 1 - shadowOffset; // of the line, which is one point wide
        const double strength = shadowStrength(edge - 0.5);
        outlineRounded(painter, shadow.adjusted(-edge, -edge, edge, edge), radius + edge, 1,
                       QColor::fromRgbF(0, 0, 0, float(shadowOpacity * strength)));
    }
    return image;
}

} // namespace varno
