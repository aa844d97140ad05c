#include "kit/Symbol.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <QTransform>

#include <array>
#include <cmath>
#include <map>
#include <tuple>

// Outside of any namespace, because of what the macro declares.
static void initialiseResources()
{
    Q_INIT_RESOURCE(symbols);
}

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QLatin1StringView fileName(Symbol symbol)
{
    constexpr std::array names = {
        "arrowClockwise"_L1,
        "arrowUpLeft"_L1,
        "bookClosedFill"_L1,
        "checkmark"_L1,
        "checkmarkCircleFill"_L1,
        "chevronDown"_L1,
        "chevronRight"_L1,
        "chevronUp"_L1,
        "chevronUpChevronDown"_L1,
        "clock"_L1,
        "docTextMagnifyingGlass"_L1,
        "exclamationmarkTriangle"_L1,
        "gearshape"_L1,
        "house"_L1,
        "magnifyingGlass"_L1,
        "xmark"_L1,
        "xmarkCircleFill"_L1,
    };
    static_assert(names.size() == static_cast<std::size_t>(Symbol::xmarkCircleFill) + 1);
    return names[static_cast<std::size_t>(symbol)];
}

/// In units of the drawings' grid, of which the side of a symbol has 24.
QByteArray lineWidth(QFont::Weight weight)
{
    if (weight >= QFont::Bold)
        return "3";
    if (weight >= QFont::DemiBold)
        return "2.75";
    if (weight >= QFont::Medium)
        return "2.25";
    return "1.75";
}

/// The drawing with the lines of that weight, in black.
QByteArray drawing(Symbol symbol, QFont::Weight weight)
{
    initialiseResources();
    QFile file(u":/symbols/%1.svg"_s.arg(fileName(symbol)));
    if (!file.open(QFile::ReadOnly))
        return {};
    return file.readAll().replace("stroke-width=\"1.75\"",
                                  "stroke-width=\"" + lineWidth(weight) + '"');
}

QPixmap rendered(Symbol symbol, QFont::Weight weight, int side, const QColor& color)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer(drawing(symbol, weight)).render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    painter.end();
    return QPixmap::fromImage(image);
}

/// Drawn once for each use of it there is, of which a program has a few dozen. Not in the toolkit's
/// cache: that one sets a timer to empty itself.
const QPixmap& cached(Symbol symbol, QFont::Weight weight, int side, const QColor& color)
{
    using Key = std::tuple<Symbol, QFont::Weight, int, QRgb>;
    constexpr std::size_t most = 256;
    static std::map<Key, QPixmap> pixmaps;
    const Key key(symbol, weight, side, color.rgb());
    const auto found = pixmaps.find(key);
    if (found != pixmaps.end())
        return found->second;
    if (pixmaps.size() >= most)
        pixmaps.clear();
    return pixmaps.emplace(key, rendered(symbol, weight, side, color)).first->second;
}

} // namespace

void drawSymbol(QPainter& painter, Symbol symbol, const QRectF& box, const QColor& color,
                QFont::Weight weight)
{
    const QTransform toDevice = painter.deviceTransform();
    const double scale = std::hypot(toDevice.m11(), toDevice.m12());
    const int side = static_cast<int>(std::floor(std::min(box.width(), box.height()) * scale));
    if (side <= 0)
        return;
    const double points = side / scale;
    const QPointF corner = box.center() - QPointF(points, points) / 2;
    const QPointF whole = toDevice.inverted().map(QPointF(toDevice.map(corner).toPoint()));
    painter.save();
    painter.setOpacity(painter.opacity() * color.alphaF());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRectF(whole, QSizeF(points, points)),
                       cached(symbol, weight, side, QColor(color.rgb())), QRectF(0, 0, side, side));
    painter.restore();
}

} // namespace varno
