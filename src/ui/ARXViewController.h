#pragma once

#include <QWidget>

// The base of Atrium's view controllers: the content widget of a window or of a part of it.
// It adds nothing yet; it is where screen-wide behaviour (such as usage reports when a view
// appears) belongs once it exists.
class ARXViewController : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;
};
