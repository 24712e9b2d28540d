#include "ui/spaceviews/ARXSpaceMessageView.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

ARXSpaceMessageView::ARXSpaceMessageView(QWidget* parent)
    : QWidget(parent), _messageLabel(new QLabel(this)), _chooseButton(new QPushButton(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    _messageLabel->setAlignment(Qt::AlignCenter);
    _messageLabel->setWordWrap(true);
    _messageLabel->setTextFormat(Qt::PlainText);
    _messageLabel->setTextInteractionFlags(Qt::NoTextInteraction);
    layout->addWidget(_messageLabel);
    _chooseButton->setMinimumWidth(80);
    layout->addWidget(_chooseButton, 0, Qt::AlignHCenter);
    layout->addStretch(1);
}

void ARXSpaceMessageView::mousePressEvent(QMouseEvent* event) {
    // The pane under the message takes the click and becomes the active one.
    event->ignore();
}
