#pragma once

#include <QLabel>

// A one-line label that shortens its text in the middle ("Holiday pho…2023.jpg") when it gets
// less room than the text needs, so that long file names neither widen their dialog nor lose
// their extension. The whole text stays available as the tool tip.
class ARXElidedLabel : public QLabel {
    Q_OBJECT
public:
    explicit ARXElidedLabel(QWidget* parent = nullptr);

    void setFullText(const QString& text);
    QString fullText() const { return _fullText; }

    // Wide enough for the whole text up to `width` pixels; never asks for more.
    void setPreferredWidth(int width);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void elide();

    QString _fullText;
    int _preferredWidth = 360;
};
