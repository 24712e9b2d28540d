#include "ui/ARXToast.h"

#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QLayout>
#include <QPropertyAnimation>
#include <QTimer>
#include <QVBoxLayout>

namespace {
constexpr int kBottomMargin = 36;
constexpr int kSideMargin = 24;
constexpr int kMaxWidth = 480;
constexpr int kFadeInMs = 150;
constexpr int kFadeOutMs = 350;
} // namespace

ARXToast* ARXToast::present(QWidget* window, const QString& text,
                            std::chrono::milliseconds duration) {
    if (!window) {
        return nullptr;
    }
    QWidget* top = window->window();
    for (ARXToast* shown : top->findChildren<ARXToast*>(QString(), Qt::FindDirectChildrenOnly)) {
        shown->hide();
        shown->deleteLater();
    }
    return new ARXToast(top, text, duration);
}

ARXToast::ARXToast(QWidget* window, const QString& text, std::chrono::milliseconds duration)
    : QWidget(window), _label(new QLabel(this)) {
    setObjectName(QStringLiteral("ARXToast"));
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_StyledBackground);
    // A dark rounded plate reads on light and dark themes alike.
    setStyleSheet(QStringLiteral("#ARXToast { background-color: rgba(32, 32, 32, 225);"
                                 " border-radius: 8px; }"
                                 "#ARXToast QLabel { color: white; }"));

    _label->setTextFormat(Qt::PlainText);
    _label->setWordWrap(true);
    _label->setAlignment(Qt::AlignCenter);
    _label->setText(text);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 10, 16, 10);
    layout->addWidget(_label);

    auto* opacity = new QGraphicsOpacityEffect(this);
    opacity->setOpacity(0);
    setGraphicsEffect(opacity);
    auto* fadeIn = new QPropertyAnimation(opacity, "opacity", this);
    fadeIn->setDuration(kFadeInMs);
    fadeIn->setEndValue(1.0);
    fadeIn->start(QAbstractAnimation::DeleteWhenStopped);
    QTimer::singleShot(duration, this, &ARXToast::fadeOut);

    window->installEventFilter(this);
    place();
    show();
    raise();
}

QString ARXToast::text() const {
    return _label->text();
}

bool ARXToast::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parent() && event->type() == QEvent::Resize) {
        place();
    }
    return QWidget::eventFilter(watched, event);
}

void ARXToast::place() {
    const QWidget* window = parentWidget();
    const int room = std::max(0, window->width() - 2 * kSideMargin);
    // A wrapped label's own hint is narrower than its text; one line is wanted where it fits.
    const QMargins margins = layout()->contentsMargins();
    const int natural = _label->fontMetrics().horizontalAdvance(_label->text()) + margins.left() +
                        margins.right() + 2;
    const int width = std::min({kMaxWidth, room, natural});
    const int fitted = heightForWidth(width);
    const int height = fitted > 0 ? fitted : sizeHint().height();
    setGeometry((window->width() - width) / 2, window->height() - kBottomMargin - height, width,
                height);
}

void ARXToast::fadeOut() {
    auto* opacity = static_cast<QGraphicsOpacityEffect*>(graphicsEffect());
    auto* fade = new QPropertyAnimation(opacity, "opacity", this);
    fade->setDuration(kFadeOutMs);
    fade->setEndValue(0.0);
    connect(fade, &QPropertyAnimation::finished, this, &QObject::deleteLater);
    fade->start();
}
