#pragma once

#include <QBuffer>
#include <QColor>
#include <QImage>

#include <string>

// The bytes of a small image file of one colour, for tests of types, sizes and media facts.
// Empty when Qt has no writer for the format.
inline std::string ARXImageBytes(int width, int height, const char* format = "PNG",
                                 QColor color = Qt::red) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format)) {
        return {};
    }
    return bytes.toStdString();
}
