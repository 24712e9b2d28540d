#include "ui/window/ARXToolbarIcon.h"

#include <QApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QStyle>

#include <array>
#include <vector>

namespace ARXToolbarIcon {

namespace {

// The sizes toolbar buttons ask for (small and normal icons); the icon offers them as its own.
constexpr std::array<int, 4> kSizes{16, 22, 24, 32};

struct Look {
    std::vector<const char*> themeNames; // in order of preference
    // Every style has these; for the others the picture is drawn.
    QStyle::StandardPixmap standard = QStyle::SP_CustomBase;
};

Look look(Kind kind) {
    switch (kind) {
    case Kind::back:
        return {{"go-previous-symbolic", "go-previous"}};
    case Kind::forward:
        return {{"go-next-symbolic", "go-next"}};
    case Kind::sidebar:
        return {{"sidebar-show-symbolic", "sidebar-show", "view-sidetree"}};
    case Kind::iconsView:
        return {{"view-grid-symbolic", "view-list-icons", "view-grid"}};
    case Kind::listView:
        return {{"view-list-symbolic", "view-list-details", "view-list"}};
    case Kind::columnsView:
        return {{"view-columns-symbolic", "view-file-columns", "view-column"}};
    case Kind::hiddenFiles:
        return {{"view-reveal-symbolic", "view-visible", "view-hidden"}};
    case Kind::pin:
        return {{"view-pin-symbolic", "window-pin", "pin"}};
    case Kind::newFolder:
        return {{"folder-new-symbolic", "folder-new"}, QStyle::SP_FileDialogNewFolder};
    case Kind::trash:
        return {{"user-trash-symbolic", "user-trash"}, QStyle::SP_TrashIcon};
    case Kind::getInfo:
        return {{"document-properties-symbolic", "document-properties", "dialog-information"},
                QStyle::SP_FileDialogInfoView};
    }
    return {{}};
}

// Draws a picture on a 16 by 16 grid, in the painter's pen colour.
void draw(Kind kind, QPainter& p) {
    const QColor color = p.pen().color();
    QPen pen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    switch (kind) {
    case Kind::back:
        pen.setWidthF(2.0);
        p.setPen(pen);
        p.drawPolyline(QPolygonF{{10.0, 3.0}, {5.0, 8.0}, {10.0, 13.0}});
        break;
    case Kind::forward:
        pen.setWidthF(2.0);
        p.setPen(pen);
        p.drawPolyline(QPolygonF{{6.0, 3.0}, {11.0, 8.0}, {6.0, 13.0}});
        break;
    case Kind::sidebar: {
        const QRectF frame(1.75, 2.75, 12.5, 10.5);
        QColor shade = color;
        shade.setAlphaF(0.35);
        p.fillRect(QRectF(frame.left(), frame.top(), 4.25, frame.height()), shade);
        p.drawRoundedRect(frame, 1.5, 1.5);
        p.drawLine(QPointF(6.0, frame.top()), QPointF(6.0, frame.bottom()));
        break;
    }
    case Kind::iconsView:
        p.setPen(Qt::NoPen);
        p.setBrush(color);
        for (const QPointF corner : {QPointF(2, 2), QPointF(9, 2), QPointF(2, 9), QPointF(9, 9)}) {
            p.drawRoundedRect(QRectF(corner, QSizeF(5, 5)), 1.0, 1.0);
        }
        break;
    case Kind::listView:
        for (const qreal y : {3.5, 8.0, 12.5}) {
            p.drawPoint(QPointF(2.5, y));
            p.drawLine(QPointF(6.0, y), QPointF(14.0, y));
        }
        break;
    case Kind::columnsView: {
        const QRectF frame(1.75, 2.75, 12.5, 10.5);
        p.drawRoundedRect(frame, 1.5, 1.5);
        for (const qreal x : {6.0, 10.0}) {
            p.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom()));
        }
        break;
    }
    case Kind::hiddenFiles: {
        QPainterPath eye(QPointF(1.0, 8.0));
        eye.quadTo(QPointF(8.0, 1.0), QPointF(15.0, 8.0));
        eye.quadTo(QPointF(8.0, 15.0), QPointF(1.0, 8.0));
        p.drawPath(eye);
        p.setBrush(color);
        p.drawEllipse(QPointF(8.0, 8.0), 2.0, 2.0);
        break;
    }
    case Kind::pin:
        p.setBrush(color);
        p.drawPolygon(
            QPolygonF{{5.5, 2.0}, {10.5, 2.0}, {10.0, 4.0}, {11.5, 9.0}, {4.5, 9.0}, {6.0, 4.0}});
        p.drawLine(QPointF(8.0, 9.0), QPointF(8.0, 14.5));
        break;
    case Kind::newFolder:
    case Kind::trash:
    case Kind::getInfo:
        // Taken from the style; never drawn.
        break;
    }
}

// The picture in one colour per mode: the theme's symbolic icon coloured in, or the drawing.
QPixmap picture(Kind kind, const QIcon& symbolic, int size, qreal ratio, const QColor& color) {
    if (!symbolic.isNull()) {
        QPixmap pixmap = symbolic.pixmap(QSize(size, size), ratio);
        QPainter painter(&pixmap);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(QRectF(QPointF(0, 0), pixmap.deviceIndependentSize()), color);
        return pixmap;
    }
    QPixmap pixmap(QSize(size, size) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    painter.setPen(color);
    draw(kind, painter);
    return pixmap;
}

// The icon in the palette's colours, each picture made when a button first asks for its size and
// kept: making all sizes, ratios and colours up front cost every window a few milliseconds of its
// start for pictures that are mostly never shown.
class ColouredIconEngine : public QIconEngine {
public:
    ColouredIconEngine(Kind kind, QIcon symbolic, const QPalette& palette)
        : _kind(kind), _symbolic(std::move(symbolic)),
          // A switch that is on takes the highlight colour: a pressed-in button alone is hard to
          // see on some palettes.
          _normal(palette.color(QPalette::Active, QPalette::ButtonText)),
          _on(palette.color(QPalette::Active, QPalette::Highlight)),
          _disabled(palette.color(QPalette::Disabled, QPalette::ButtonText)) {}

    QIconEngine* clone() const override { return new ColouredIconEngine(*this); }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        const QColor& color = mode == QIcon::Disabled ? _disabled
                              : state == QIcon::On    ? _on
                                                      : _normal;
        const int side = std::min(size.width(), size.height());
        const QString key = QStringLiteral("%1-%2-%3").arg(side).arg(scale).arg(color.rgba());
        auto found = _pictures.constFind(key);
        if (found == _pictures.constEnd()) {
            found = _pictures.insert(key, picture(_kind, _symbolic, side, scale, color));
        }
        return *found;
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const qreal scale = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size(), mode, state, scale));
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes;
        for (int side : kSizes) {
            sizes.append(QSize(side, side));
        }
        return sizes;
    }

private:
    Kind _kind;
    QIcon _symbolic;
    QColor _normal;
    QColor _on;
    QColor _disabled;
    QHash<QString, QPixmap> _pictures;
};

QIcon coloured(Kind kind, const QIcon& symbolic, const QPalette& palette) {
    return QIcon(new ColouredIconEngine(kind, symbolic, palette));
}

} // namespace

QIcon icon(Kind kind, const QPalette& palette, const QStyle* style) {
    for (const char* name : look(kind).themeNames) {
        const QString themeName = QLatin1String(name);
        if (!QIcon::hasThemeIcon(themeName)) {
            continue;
        }
        const QIcon themed = QIcon::fromTheme(themeName);
        // Symbolic icons are single-colour shapes meant to take the text colour; the full-colour
        // ones are shown as the theme drew them.
        return themeName.endsWith(QLatin1String("-symbolic")) ? coloured(kind, themed, palette)
                                                              : themed;
    }
    return drawnIcon(kind, palette, style);
}

QIcon drawnIcon(Kind kind, const QPalette& palette, const QStyle* style) {
    const QStyle::StandardPixmap standard = look(kind).standard;
    if (standard != QStyle::SP_CustomBase) {
        return (style ? style : QApplication::style())->standardIcon(standard);
    }
    return coloured(kind, QIcon(), palette);
}

} // namespace ARXToolbarIcon
