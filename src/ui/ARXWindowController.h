#pragma once

#include <QObject>

class QWidget;

// The base of Atrium's window controllers. A shown controller keeps itself alive: it joins a
// process-wide set in showWindow() and leaves it in close(), so a window lives without another
// owner; the first show runs onFirstVisible() once.
class ARXWindowController : public QObject {
    Q_OBJECT

public:
    explicit ARXWindowController(QObject* parent = nullptr);
    ~ARXWindowController() override;

    // The top-level window shown; null while it has none.
    virtual QWidget* window() const = 0;

    // Shows the window, brings it forward and gives it the keyboard.
    virtual void showWindow();
    // Leaves the set of shown controllers; the controller is deleted from the event loop.
    virtual void close();

    bool firstVisible() const { return _firstVisible; }
    bool alignCenter() const { return _alignCenter; }
    void setAlignCenter(bool center) { _alignCenter = center; }

    // The controllers shown and not yet closed.
    static QList<ARXWindowController*> shownControllers();

protected:
    // The first showing: centres the window when asked to.
    virtual void onFirstVisible();

private:
    bool _firstVisible = true;
    bool _alignCenter = false;
};
