#pragma once

#include "ops/ARXOperationPresenter.h"

#include <QDialog>

#include <functional>

class ARXElidedLabel;
class QCheckBox;
class QLabel;
class QPushButton;

// The question "the target already exists" of a copy or a move: Replace, Skip, Keep Both or Stop,
// and for a folder onto a folder also Merge, for this item or, with "Apply to All", for every
// later conflict of the batch. The batch waits
// for the answer, so the dialog must be answered: it has no close button, cannot be resized, and
// Escape answers Stop, the one choice that changes nothing on disk and ends the wait at once.
// Keep Both is the default button (Return), because it is the answer that cannot lose data.
//
// The answer is given exactly once. A dialog destroyed without an answer (its window closed
// under it) answers Stop from the event loop, so that the waiting batch ends instead of hanging.
class ARXConflictDialog : public QDialog {
    Q_OBJECT
public:
    using Answer = std::function<void(ARXFileOperationConflictAction, bool applyToAll)>;

    ARXConflictDialog(const ARXConflictQuestion& question, Answer answer,
                      QWidget* parentWindow = nullptr);
    ~ARXConflictDialog() override;

    // Builds the dialog, shows it window-modal over `parentWindow` without waiting, and deletes
    // it once answered.
    static ARXConflictDialog* ask(const ARXConflictQuestion& question, Answer answer,
                                  QWidget* parentWindow);

    QLabel* iconImageView() const { return _iconImageView; }
    ARXElidedLabel* nameLabel() const { return _nameLabel; }
    QLabel* noteLabel() const { return _noteLabel; }
    QCheckBox* applyToAllButton() const { return _applyToAllButton; }
    QPushButton* button(ARXFileOperationConflictAction action) const;

public Q_SLOTS:
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QPushButton* addAnswerButton(const QString& text, ARXFileOperationConflictAction action);
    void answer(ARXFileOperationConflictAction action);

    Answer _answer;
    QLabel* _iconImageView;
    ARXElidedLabel* _nameLabel;
    QLabel* _noteLabel;
    QCheckBox* _applyToAllButton;
    QPushButton* _replaceButton = nullptr;
    QPushButton* _skipButton = nullptr;
    QPushButton* _keepBothButton = nullptr;
    QPushButton* _stopButton = nullptr;
    QPushButton* _mergeButton = nullptr;
};
