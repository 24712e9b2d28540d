#include "ops/ARXFileOperationConflict.h"

#include "platform/ARXFileStatus.h"

#include <QCoreApplication>

namespace ARXFileOperationConflict {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Atrium", text);
}

QString comparison(const Path& from, const Path& target) {
    const ARXFileStatus source = ARXFileStatus::lstat(from);
    const ARXFileStatus existing = ARXFileStatus::lstat(target);
    // A failed read leaves the fields at their zero defaults, which is what they count as.
    const int64_t sourceTime = source.modified.seconds;
    const int64_t targetTime = existing.modified.seconds;
    const QString age = sourceTime == targetTime  ? tr("Same Modified Date")
                        : sourceTime < targetTime ? tr("Newer")
                                                  : tr("Older");
    const QString size = source.size == existing.size  ? tr("Same Size")
                         : source.size < existing.size ? tr("Bigger")
                                                       : tr("Smaller");
    return age + QStringLiteral(", ") + size;
}

} // namespace

ARXConflictQuestion question(const ARXFileOperationItem& item, bool single, bool folders) {
    ARXConflictQuestion question;
    question.from = item.from;
    question.name = ARXPath::display(ARXPath::lastComponent(item.from));
    question.note = tr("The target already exists!");
    question.single = single;
    question.folders = folders;
    if (folders) {
        question.note =
            tr("The folder “%1” will be replaced; items only in it will be moved to the Trash.")
                .arg(question.name);
        return question;
    }
    // Only an item that already has a target is compared. At a first conflict the target is
    // not set yet, so the plain note is what the user usually sees.
    if (const std::optional<Path> target = item.target()) {
        question.note = tr("The target already exists: %1").arg(comparison(item.from, *target)) +
                        QStringLiteral(".");
    }
    return question;
}

} // namespace ARXFileOperationConflict
