#include "ui/layout/ARXLayoutPicture.h"

#include <QPainter>
#include <QPixmap>

namespace {

using Shape = ARXAtriumLayoutShape;
using Split = ARXAtriumLayoutShape::Split;

// Splits `area` into `count` equal parts along the split's direction.
QRectF part(const QRectF& area, Split split, int index, int count) {
    if (split == Split::columns) {
        const qreal width = area.width() / count;
        return {area.left() + width * index, area.top(), width, area.height()};
    }
    const qreal height = area.height() / count;
    return {area.left(), area.top() + height * index, area.width(), height};
}

// The lines between `count` equal parts of `area`.
void drawDividers(QPainter& painter, const QRectF& area, Split split, int count) {
    for (int i = 1; i < count; ++i) {
        const QRectF cell = part(area, split, i, count);
        if (split == Split::columns) {
            painter.drawLine(QPointF(cell.left(), area.top()), QPointF(cell.left(), area.bottom()));
        } else {
            painter.drawLine(QPointF(area.left(), cell.top()), QPointF(area.right(), cell.top()));
        }
    }
}

} // namespace

QPixmap ARXLayoutPicture::pixmap(ARXAtriumLayoutId id, qreal devicePixelRatio,
                                 const QPalette& palette) {
    QPixmap picture(kSize * devicePixelRatio);
    picture.setDevicePixelRatio(devicePixelRatio);
    picture.fill(Qt::transparent);

    QPainter painter(&picture);
    QPen pen(palette.color(QPalette::Text));
    pen.setWidthF(1.0);
    pen.setCapStyle(Qt::FlatCap);
    painter.setPen(pen);
    // Lines on pixel centres stay crisp at 1x; the outline leaves a pixel of room on each side.
    const QRectF outline = QRectF(QPointF(0, 0), QSizeF(kSize)).adjusted(1.5, 1.5, -1.5, -1.5);
    painter.drawRoundedRect(outline, 1.5, 1.5);

    const Shape& shape = ARXAtriumLayout::shape(id);
    if (shape.root == Split::none) {
        return picture;
    }
    const int count = int(shape.items.size());
    drawDividers(painter, outline, shape.root, count);
    for (int i = 0; i < count; ++i) {
        const Shape::Item& item = shape.items[size_t(i)];
        if (item.isSplit()) {
            drawDividers(painter, part(outline, shape.root, i, count), shape.across(),
                         int(item.inner.size()));
        }
    }
    return picture;
}

QIcon ARXLayoutPicture::icon(ARXAtriumLayoutId id, const QPalette& palette) {
    QIcon result;
    result.addPixmap(pixmap(id, 1.0, palette));
    result.addPixmap(pixmap(id, 2.0, palette));
    return result;
}
