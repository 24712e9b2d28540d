#pragma once

#include "platform/ARXPath.h"

#include <QDialog>

class ARXElidedLabel;
class QLabel;
class QProgressBar;
class QPushButton;

// The progress sheet of a batch of file operations (and of an archive): the current item's icon,
// a title such as "Copying “name”...", and a progress bar. It is window-modal on its parent
// window, has no close button and ignores Escape: a batch ends by itself, or through its cancel
// button where the owner shows one.
class ARXOperationSheet : public QDialog {
    Q_OBJECT
public:
    explicit ARXOperationSheet(QWidget* parentWindow);

    // Shows the sheet over its window without waiting for it (QDialog::open).
    void present();
    // Takes the sheet away for good; the owner deletes it.
    void dismiss();

    // The icon of the item at `path`; looked up once per path, since updates come ten times a
    // second for the same item.
    void setItemPath(const Path& path);
    void setTitle(const QString& title);
    // `value` out of `maximum`, in bytes. A maximum of 0 (nothing to measure) shows an empty bar.
    void setProgress(double value, double maximum);

    // The engine's batches cannot be cancelled, so the button starts hidden; an archive shows it.
    void setCancelVisible(bool visible);

    QLabel* iconImageView() const { return _iconImageView; }
    ARXElidedLabel* titleLabel() const { return _titleLabel; }
    QProgressBar* progressIndicator() const { return _progressIndicator; }
    QPushButton* cancelButton() const { return _cancelButton; }

    // The bar's own range: bytes are mapped onto it, since a QProgressBar counts in int.
    static constexpr int kProgressSteps = 10000;

Q_SIGNALS:
    void cancelled();

public Q_SLOTS:
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QLabel* _iconImageView;
    ARXElidedLabel* _titleLabel;
    QProgressBar* _progressIndicator;
    QPushButton* _cancelButton;
    Path _iconPath;
    bool _hasIcon = false;
    bool _dismissing = false;
};
