#include "ui/layout/ARXHandySplitView.h"

#include <QChildEvent>
#include <QPainter>
#include <QSplitterHandle>

namespace {

// Draws the line in the palette's mid colour, so it reads on dark and light themes alike. Only the
// contents rectangle is painted: Qt gives a 1-pixel handle wider margins to grab by.
class ARXHandySplitHandle : public QSplitterHandle {
public:
    using QSplitterHandle::QSplitterHandle;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(contentsRect(), palette().color(QPalette::Mid));
    }
};

} // namespace

ARXHandySplitView::ARXHandySplitView(Qt::Orientation orientation, QWidget* parent)
    : QSplitter(orientation, parent) {
    setHandleWidth(1);
    setChildrenCollapsible(false);
    setOpaqueResize(true);
}

void ARXHandySplitView::setHandy(bool handy) {
    _handy = handy;
    if (_handy) {
        for (int i = 0; i < count(); ++i) {
            clearStretch(widget(i));
        }
    }
}

QSplitterHandle* ARXHandySplitView::createHandle() {
    return new ARXHandySplitHandle(orientation(), this);
}

void ARXHandySplitView::childEvent(QChildEvent* event) {
    QSplitter::childEvent(event);
    if (_handy && event->added() && event->child()->isWidgetType()) {
        clearStretch(static_cast<QWidget*>(event->child()));
    }
}

void ARXHandySplitView::clearStretch(QWidget* child) {
    // QSplitter shares a resize by the children's sizes only when none has a stretch factor.
    if (!child || qobject_cast<QSplitterHandle*>(child)) {
        return;
    }
    QSizePolicy policy = child->sizePolicy();
    policy.setHorizontalStretch(0);
    policy.setVerticalStretch(0);
    child->setSizePolicy(policy);
}
