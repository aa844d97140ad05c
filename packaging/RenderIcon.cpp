#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

/// Draws an icon as a square of pixels.
///     varno-render-icon DRAWING SIDE PICTURE
int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fputs("Usage: varno-render-icon DRAWING SIDE PICTURE\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    const int side = QByteArray(argv[2]).toInt();
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    return drawing.isValid() && picture.save(QString::fromLocal8Bit(argv[3]), "PNG") ? 0 : 1;
}
