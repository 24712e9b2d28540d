#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

// What a pane shows in place of its content when the folder cannot be shown: a centred message
// and a button to choose another folder. A click on the message still activates the pane.
class ARXSpaceMessageView : public QWidget {
    Q_OBJECT
public:
    explicit ARXSpaceMessageView(QWidget* parent = nullptr);

    QLabel* messageLabel() const { return _messageLabel; }
    QPushButton* chooseButton() const { return _chooseButton; }

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    QLabel* _messageLabel;
    QPushButton* _chooseButton;
};
