#include "ui/ARXAlerts.h"

#include "ops/ARXFileRename.h"

#include <QCoreApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <memory>

namespace ARXAlerts {

namespace {

constexpr int kTextWidth = 360;

QMessageBox::Icon iconFor(ARXAlertStyle style) {
    switch (style) {
    case ARXAlertStyle::informational:
        return QMessageBox::Information;
    case ARXAlertStyle::warning:
        return QMessageBox::Warning;
    case ARXAlertStyle::critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::Information;
}

QString tr(const char* text) {
    return QCoreApplication::translate("ARXAlerts", text);
}

QMessageBox* makeBox(QWidget* parent, QMessageBox::Icon icon, const QString& message,
                     const QString& informativeText) {
    QWidget* window = parent ? parent->window() : nullptr;
    auto* box = new QMessageBox(window);
    box->setIcon(icon);
    // Names and error texts are shown as they are, never read as markup.
    box->setTextFormat(Qt::PlainText);
    box->setText(message);
    box->setInformativeText(informativeText);
    if (auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        label->setTextFormat(Qt::PlainText);
        // A wrapped label asks only for its longest word, which folds an error's path over
        // several short lines under a short message; it gets the width of a comfortable line.
        label->setMinimumWidth(
            std::min(label->fontMetrics().horizontalAdvance(informativeText), kTextWidth));
    }
    if (!informativeText.isEmpty()) {
        // The message is the headline over its explanation.
        if (auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
            QFont font = label->font();
            font.setBold(true);
            label->setFont(font);
        }
    }
    box->setWindowModality(window ? Qt::WindowModal : Qt::ApplicationModal);
    return box;
}

QMessageBox* makeInform(QWidget* parent, ARXAlertStyle style, const QString& message,
                        const QString& informativeText) {
    QMessageBox* box = makeBox(parent, iconFor(style), message, informativeText);
    QPushButton* ok = box->addButton(tr("OK"), QMessageBox::AcceptRole);
    box->setDefaultButton(ok);
    box->setEscapeButton(ok);
    return box;
}

// Shows the box from the event loop and deletes it when it closes; `closed` hears the button.
void showAsync(QMessageBox* box, std::function<void(QAbstractButton* clicked)> closed) {
    box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(box, &QDialog::finished, box, [box, closed = std::move(closed)] {
        if (closed) {
            closed(box->clickedButton());
        }
    });
    // QDialog::open makes every dialog window-modal; one without a window keeps its own modality.
    if (box->parentWidget()) {
        box->open();
    } else {
        box->show();
    }
}

bool execAndAsk(QMessageBox* box, const QAbstractButton* proceed) {
    QPointer<QMessageBox> guard(box);
    box->exec();
    if (!guard) {
        return false;
    }
    const bool answer = box->clickedButton() == proceed;
    delete box;
    return answer;
}

// The first of the two buttons proceeds. The destructive role places it before Cancel in the
// button layouts of the Linux desktops, as in the order the buttons are given.
QPushButton* addProceedAndCancel(QMessageBox* box, const QString& proceedText) {
    QPushButton* proceed = box->addButton(proceedText, QMessageBox::DestructiveRole);
    QPushButton* cancel = box->addButton(tr("Cancel"), QMessageBox::RejectRole);
    box->setEscapeButton(cancel);
    return proceed;
}

QAbstractButton* proceedButton(const QMessageBox* box) {
    for (QAbstractButton* button : box->buttons()) {
        if (box->buttonRole(button) == QMessageBox::DestructiveRole) {
            return button;
        }
    }
    return nullptr;
}

void confirm(QMessageBox* box, std::function<void(bool)> answer) {
    const QAbstractButton* proceed = proceedButton(box);
    showAsync(box, [proceed, answer = std::move(answer)](QAbstractButton* clicked) {
        if (answer) {
            answer(clicked != nullptr && clicked == proceed);
        }
    });
}

} // namespace

QMessageBox* inform(QWidget* parent, ARXAlertStyle style, const QString& message,
                    const QString& informativeText, std::function<void()> done) {
    QMessageBox* box = makeInform(parent, style, message, informativeText);
    showAsync(box, [done = std::move(done)](QAbstractButton*) {
        if (done) {
            done();
        }
    });
    return box;
}

void execInform(QWidget* parent, ARXAlertStyle style, const QString& message,
                const QString& informativeText) {
    QMessageBox* box = makeInform(parent, style, message, informativeText);
    execAndAsk(box, nullptr);
}

QMessageBox* informError(QWidget* parent, const QString& errorText, std::function<void()> done) {
    return inform(parent, ARXAlertStyle::informational, tr("Error occurred!"), errorText,
                  std::move(done));
}

QMessageBox* informNameTaken(QWidget* parent, std::string_view name, std::function<void()> done) {
    return inform(parent, ARXAlertStyle::critical, ARXFileRename::alreadyExistsText(name),
                  QString(), std::move(done));
}

QMessageBox* makeDeleteConfirmation(QWidget* parent, int count, const QString& name) {
    const QString message =
        count == 1 ? tr("Are you sure you want to delete “%1”?").arg(name)
                   : tr("Are you sure you want to delete the %1 selected items?").arg(count);
    const QString informative =
        count == 1
            ? tr("This item will be deleted immediately. You can’t undo this action.")
            : tr("%1 items will be deleted immediately. You can’t undo this action.").arg(count);
    QMessageBox* box = makeBox(parent, QMessageBox::Warning, message, informative);
    addProceedAndCancel(box, tr("Delete"));
    // Return cancels: deleting for good takes a deliberate click on Delete.
    box->setDefaultButton(qobject_cast<QPushButton*>(box->escapeButton()));
    return box;
}

void confirmDelete(QWidget* parent, int count, const QString& name,
                   std::function<void(bool proceed)> answer) {
    confirm(makeDeleteConfirmation(parent, count, name), std::move(answer));
}

bool execConfirmDelete(QWidget* parent, int count, const QString& name) {
    QMessageBox* box = makeDeleteConfirmation(parent, count, name);
    return execAndAsk(box, proceedButton(box));
}

QMessageBox* makeDeleteImmediatelyQuestion(QWidget* parent, const QString& name,
                                           const QString& reason) {
    QMessageBox* box = makeBox(
        parent, QMessageBox::Warning, tr("“%1” can’t be moved to the Trash.").arg(name),
        reason + u'\n' + tr("Do you want to delete it immediately? You can’t undo this action."));
    addProceedAndCancel(box, tr("Delete Immediately"));
    // As before any deletion for good, Return cancels.
    box->setDefaultButton(qobject_cast<QPushButton*>(box->escapeButton()));
    return box;
}

void askDeleteImmediately(QWidget* parent, const QString& name, const QString& reason,
                          std::function<void(bool deleteNow)> answer) {
    QMessageBox* box = makeDeleteImmediatelyQuestion(parent, name, reason);
    // A batch waits for this answer: a window closing under the question answers Cancel.
    auto answered = std::make_shared<bool>(false);
    auto once = [answered, answer = std::move(answer)](bool deleteNow) {
        if (!*answered) {
            *answered = true;
            answer(deleteNow);
        }
    };
    QObject::connect(box, &QObject::destroyed, [once] { once(false); });
    confirm(box, once);
}

QMessageBox* makeEmptyTrashConfirmation(QWidget* parent) {
    QMessageBox* box =
        makeBox(parent, QMessageBox::Warning,
                tr("Are you sure you want to permanently erase the items in the Trash?"),
                tr("You can’t undo this action."));
    box->setDefaultButton(addProceedAndCancel(box, tr("Empty Trash")));
    return box;
}

void confirmEmptyTrash(QWidget* parent, std::function<void(bool proceed)> answer) {
    confirm(makeEmptyTrashConfirmation(parent), std::move(answer));
}

bool execConfirmEmptyTrash(QWidget* parent) {
    QMessageBox* box = makeEmptyTrashConfirmation(parent);
    return execAndAsk(box, proceedButton(box));
}

} // namespace ARXAlerts
