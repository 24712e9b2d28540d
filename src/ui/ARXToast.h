#pragma once

#include <QWidget>

#include <chrono>

class QLabel;

// A short message shown over the bottom of a window's content, which fades in, stays a moment
// and fades out by itself. It takes neither focus nor clicks, so typing and clicking go on
// underneath. A window shows one toast at a time: a new one replaces the one on screen, since the
// latest message is the one that describes what the user just did.
class ARXToast : public QWidget {
    Q_OBJECT
public:
    static constexpr std::chrono::milliseconds kDuration{2500};

    // Shows `text` over `window` (its top-level window is used). Answers the toast, which deletes
    // itself when it has faded out; null when there is no window.
    static ARXToast* present(QWidget* window, const QString& text,
                             std::chrono::milliseconds duration = kDuration);

    QString text() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ARXToast(QWidget* window, const QString& text, std::chrono::milliseconds duration);

    void place();
    void fadeOut();

    QLabel* _label;
};
