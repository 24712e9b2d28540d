#include "ui/ARXConflictDialog.h"

#include "ui/ARXElidedLabel.h"
#include "ui/ARXFileIcon.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kIconSize = 64;
constexpr int kTextWidth = 340;
} // namespace

ARXConflictDialog::ARXConflictDialog(const ARXConflictQuestion& question, Answer answer,
                                     QWidget* parentWindow)
    : QDialog(parentWindow ? parentWindow->window() : nullptr,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      _answer(std::move(answer)), _iconImageView(new QLabel(this)),
      _nameLabel(new ARXElidedLabel(this)), _noteLabel(new QLabel(this)),
      _applyToAllButton(new QCheckBox(tr("Apply to All"), this)) {
    setWindowTitle(QString());
    setWindowModality(parentWindow ? Qt::WindowModal : Qt::ApplicationModal);
    setSizeGripEnabled(false);

    _iconImageView->setFixedSize(kIconSize, kIconSize);
    _iconImageView->setAlignment(Qt::AlignCenter);
    _iconImageView->setPixmap(ARXFileIcon::forPath(question.from).pixmap(kIconSize, kIconSize));

    QFont bold = _nameLabel->font();
    bold.setBold(true);
    _nameLabel->setFont(bold);
    _nameLabel->setPreferredWidth(kTextWidth);
    _nameLabel->setFullText(question.name);

    _noteLabel->setTextFormat(Qt::PlainText);
    _noteLabel->setWordWrap(true);
    _noteLabel->setFixedWidth(kTextWidth);
    _noteLabel->setText(question.note);

    _applyToAllButton->setVisible(!question.single);

    // The roles let the desktop's own convention place the buttons, as in its other dialogs.
    auto* buttons = new QDialogButtonBox(this);
    _skipButton = addAnswerButton(tr("Skip"), ARXFileOperationConflictAction::skip);
    _replaceButton = addAnswerButton(tr("Replace"), ARXFileOperationConflictAction::replace);
    _keepBothButton = addAnswerButton(tr("Keep Both"), ARXFileOperationConflictAction::keepBoth);
    _stopButton = addAnswerButton(tr("Stop"), ARXFileOperationConflictAction::stop);
    if (question.folders) {
        // Into the folder already there, asking about each name both hold.
        _mergeButton = addAnswerButton(tr("Merge"), ARXFileOperationConflictAction::merge);
        buttons->addButton(_mergeButton, QDialogButtonBox::ActionRole);
    }
    buttons->addButton(_skipButton, QDialogButtonBox::ActionRole);
    buttons->addButton(_replaceButton, QDialogButtonBox::DestructiveRole);
    buttons->addButton(_keepBothButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(_stopButton, QDialogButtonBox::RejectRole);
    _keepBothButton->setDefault(true);
    _keepBothButton->setFocus();

    auto* text = new QVBoxLayout;
    text->setSpacing(6);
    text->addWidget(_nameLabel);
    text->addWidget(_noteLabel);
    text->addSpacing(4);
    text->addWidget(_applyToAllButton);
    text->addStretch();

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(20, 20, 20, 16);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(16);
    grid->addWidget(_iconImageView, 0, 0, Qt::AlignTop);
    grid->addLayout(text, 0, 1);
    grid->addWidget(buttons, 1, 0, 1, 2);
    // It cannot be resized: the layout fixes the window to its content.
    grid->setSizeConstraint(QLayout::SetFixedSize);
}

ARXConflictDialog::~ARXConflictDialog() {
    if (!_answer || !QCoreApplication::instance()) {
        return;
    }
    // Destroyed unanswered: the batch must not wait for ever. Stop changes nothing on disk. The
    // answer comes from the event loop, not from the middle of a window's destruction.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [answer = std::move(_answer)] { answer(ARXFileOperationConflictAction::stop, false); },
        Qt::QueuedConnection);
}

ARXConflictDialog* ARXConflictDialog::ask(const ARXConflictQuestion& question, Answer answer,
                                          QWidget* parentWindow) {
    auto* dialog = new ARXConflictDialog(question, std::move(answer), parentWindow);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
    return dialog;
}

QPushButton* ARXConflictDialog::button(ARXFileOperationConflictAction action) const {
    switch (action) {
    case ARXFileOperationConflictAction::replace:
        return _replaceButton;
    case ARXFileOperationConflictAction::skip:
        return _skipButton;
    case ARXFileOperationConflictAction::keepBoth:
        return _keepBothButton;
    case ARXFileOperationConflictAction::stop:
        return _stopButton;
    case ARXFileOperationConflictAction::merge:
        return _mergeButton;
    case ARXFileOperationConflictAction::notselected:
        break;
    }
    return nullptr;
}

QPushButton* ARXConflictDialog::addAnswerButton(const QString& text,
                                                ARXFileOperationConflictAction action) {
    auto* button = new QPushButton(text, this);
    connect(button, &QPushButton::clicked, this, [this, action] { answer(action); });
    return button;
}

void ARXConflictDialog::answer(ARXFileOperationConflictAction action) {
    if (!_answer) {
        return;
    }
    // Taken out first: whatever the answer sets off, a second click cannot answer again.
    const Answer answer = std::move(_answer);
    _answer = nullptr;
    const bool applyToAll = !_applyToAllButton->isHidden() && _applyToAllButton->isChecked();
    done(action == ARXFileOperationConflictAction::stop ? QDialog::Rejected : QDialog::Accepted);
    answer(action, applyToAll);
}

void ARXConflictDialog::reject() {
    // Escape: the cancel of a batch is Stop.
    answer(ARXFileOperationConflictAction::stop);
}

void ARXConflictDialog::closeEvent(QCloseEvent* event) {
    // No close button, but a window manager may still send a close (Alt+F4): it must be answered
    // with a button.
    if (_answer) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}
