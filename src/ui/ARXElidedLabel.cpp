#include "ui/ARXElidedLabel.h"

#include <QEvent>
#include <QFontMetrics>

namespace {
// Names may hold line feeds; one line keeps the layout steady.
QString oneLine(QString text) {
    text.replace(QLatin1Char('\n'), QChar(0x21B5));
    text.replace(QLatin1Char('\r'), QChar(0x21B5));
    return text;
}
} // namespace

ARXElidedLabel::ARXElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ARXElidedLabel::setFullText(const QString& text) {
    if (text == _fullText) {
        return;
    }
    _fullText = text;
    setToolTip(text);
    updateGeometry();
    elide();
}

void ARXElidedLabel::setPreferredWidth(int width) {
    _preferredWidth = width;
    updateGeometry();
}

QSize ARXElidedLabel::sizeHint() const {
    const QFontMetrics metrics(font());
    const int margins = contentsMargins().left() + contentsMargins().right();
    const int width =
        std::min(metrics.horizontalAdvance(oneLine(_fullText)) + margins, _preferredWidth);
    return {std::max(width, minimumSizeHint().width()), QLabel::sizeHint().height()};
}

QSize ARXElidedLabel::minimumSizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.averageCharWidth() * 8, QLabel::minimumSizeHint().height()};
}

void ARXElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    elide();
}

void ARXElidedLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateGeometry();
        elide();
    }
}

void ARXElidedLabel::elide() {
    const QString shown =
        fontMetrics().elidedText(oneLine(_fullText), Qt::ElideMiddle, contentsRect().width());
    if (shown != text()) {
        QLabel::setText(shown);
    }
}
