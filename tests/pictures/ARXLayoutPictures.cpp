#include "pictures/ARXPictureEnvironment.h"
#include "ui/layout/ARXAtriumLayout.h"
#include "ui/layout/ARXLayoutPicture.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

using Id = ARXAtriumLayoutId;

class ARXLayoutPictures : public ARXPictureEnvironment {};

// The twelve layout pictures side by side, on a light and a dark strip.
TEST_F(ARXLayoutPictures, TheTwelveOnLightAndDark) {
    const QString& dir = pictureDir();
    QPalette light;
    light.setColor(QPalette::Text, Qt::black);
    QPalette dark;
    dark.setColor(QPalette::Text, Qt::white);
    const qreal ratio = 4.0;
    QImage sheet(QSize(12 * 32, 2 * 26) * ratio, QImage::Format_ARGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    painter.scale(ratio, ratio);
    painter.fillRect(QRect(0, 26, 12 * 32, 26), QColor(40, 40, 40));
    for (Id id : ARXAtriumLayout::all()) {
        const int x = int(id) * 32 + 4;
        painter.drawPixmap(x, 4, ARXLayoutPicture::pixmap(id, ratio, light));
        painter.drawPixmap(x, 30, ARXLayoutPicture::pixmap(id, ratio, dark));
    }
    painter.end();
    EXPECT_TRUE(sheet.save(dir + QStringLiteral("/layouts.png")));
}

} // namespace
