#pragma once

#include <QObject>

class QWidget;

// The base of Atrium's window controllers. A controller owns itself: it lives until close(),
// which deletes it from the event loop, so a window needs no other owner. The first show runs
// onFirstVisible() once.
class ARXWindowController : public QObject {
    Q_OBJECT

public:
    explicit ARXWindowController(QObject* parent = nullptr);

    // The top-level window shown; null while it has none.
    virtual QWidget* window() const = 0;

    // Shows the window, brings it forward and gives it the keyboard.
    virtual void showWindow();
    // The controller is deleted from the event loop.
    virtual void close();

    void setAlignCenter(bool center) { _alignCenter = center; }

protected:
    // The first showing: centres the window when asked to.
    virtual void onFirstVisible();

private:
    bool _firstVisible = true;
    bool _alignCenter = false;
};
