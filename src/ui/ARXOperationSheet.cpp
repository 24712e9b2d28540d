#include "ui/ARXOperationSheet.h"

#include "ui/ARXElidedLabel.h"
#include "ui/ARXFileIcon.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {
constexpr int kIconSize = 48;
constexpr int kTitleWidth = 380;
} // namespace

ARXOperationSheet::ARXOperationSheet(QWidget* parentWindow)
    : QDialog(parentWindow ? parentWindow->window() : nullptr,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      _iconImageView(new QLabel(this)), _titleLabel(new ARXElidedLabel(this)),
      _progressIndicator(new QProgressBar(this)),
      _cancelButton(new QPushButton(tr("Cancel"), this)) {
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(false);

    _iconImageView->setFixedSize(kIconSize, kIconSize);
    _iconImageView->setAlignment(Qt::AlignCenter);
    _titleLabel->setPreferredWidth(kTitleWidth);
    _titleLabel->setMinimumWidth(kTitleWidth);
    _progressIndicator->setRange(0, kProgressSteps);
    _progressIndicator->setValue(0);
    _progressIndicator->setTextVisible(false);
    _cancelButton->setAutoDefault(false);
    _cancelButton->hide();
    connect(_cancelButton, &QPushButton::clicked, this, &ARXOperationSheet::cancelled);

    auto* column = new QVBoxLayout;
    column->addStretch();
    column->addWidget(_titleLabel);
    column->addWidget(_progressIndicator);
    column->addStretch();

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(20, 16, 20, 16);
    row->setSpacing(14);
    row->addWidget(_iconImageView, 0, Qt::AlignVCenter);
    row->addLayout(column, 1);
    row->addWidget(_cancelButton, 0, Qt::AlignBottom);
    row->setSizeConstraint(QLayout::SetFixedSize);
}

void ARXOperationSheet::present() {
    _dismissing = false;
    open();
}

void ARXOperationSheet::dismiss() {
    _dismissing = true;
    done(QDialog::Accepted);
}

void ARXOperationSheet::setItemPath(const Path& path) {
    if (_hasIcon && path == _iconPath) {
        return;
    }
    _hasIcon = true;
    _iconPath = path;
    const QIcon icon = ARXFileIcon::forPath(path);
    _iconImageView->setPixmap(icon.pixmap(kIconSize, kIconSize));
}

void ARXOperationSheet::setTitle(const QString& title) {
    _titleLabel->setFullText(title);
}

void ARXOperationSheet::setProgress(double value, double maximum) {
    int steps = 0;
    if (maximum > 0 && std::isfinite(value) && std::isfinite(maximum)) {
        // Sizes on disk can briefly exceed what was measured (a target that grows while it is
        // copied), so the fraction is kept within the bar.
        const double fraction = std::clamp(value / maximum, 0.0, 1.0);
        steps = static_cast<int>(std::lround(fraction * kProgressSteps));
    }
    _progressIndicator->setValue(steps);
}

void ARXOperationSheet::setCancelVisible(bool visible) {
    _cancelButton->setVisible(visible);
}

void ARXOperationSheet::reject() {
    // Escape must not take the sheet away while its batch runs.
    if (_dismissing) {
        QDialog::reject();
    }
}

void ARXOperationSheet::closeEvent(QCloseEvent* event) {
    // The window manager may offer to close it all the same (Alt+F4).
    if (!_dismissing) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}
