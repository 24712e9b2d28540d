#include "model/ARXItemFacts.h"

#include "model/ARXFileEntry.h"
#include "model/ARXFileFormat.h"
#include "platform/ARXFileError.h"
#include "platform/ARXFileOwners.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXResourceValues.h"

#include <QCoreApplication>
#include <QLocale>

#include <sys/stat.h>

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("ARXItemFacts", text);
}

QString nameOr(const std::optional<std::string>& name, uint32_t id) {
    return name ? ARXPath::display(*name) : QString::number(id);
}

} // namespace

ARXItemFacts ARXItemFacts::read(const Path& path) {
    ARXItemFacts facts;
    facts.path = path;
    facts.name =
        ARXPath::display(path == "/" ? std::string_view("/") : ARXPath::lastComponent(path));
    facts.where = ARXPath::display(ARXPath::parentPath(path));
    const ARXFileStatus status = ARXFileStatus::lstat(path);
    if (!status.exists) {
        facts.error = ARXFileError::fromErrno(status.error, path).text();
        return facts;
    }
    const ARXFileEntryRef entry = ARXFileEntry::create(path);
    facts.isFolder = entry->isFolderItem();
    facts.kind = entry->kind();
    if (status.isSymbolicLink()) {
        if (const std::optional<Path> target = ARXResourceValues::readLink(path)) {
            facts.linkTarget = ARXPath::display(*target);
        }
        facts.kind = facts.isFolder ? tr("Symbolic Link to Folder") : tr("Symbolic Link");
    }
    facts.size = status.size;
    if (status.born) {
        facts.created = status.born->secondsSince1970();
    }
    facts.modified = status.modified.secondsSince1970();
    facts.accessed = status.accessed.secondsSince1970();
    facts.permissions = permissionsText(status.mode);
    facts.owner = nameOr(ARXFileOwners::userName(status.uid), status.uid);
    facts.group = nameOr(ARXFileOwners::groupName(status.gid), status.gid);
    return facts;
}

QString ARXItemFacts::permissionsText(uint32_t mode) {
    QString text = QStringLiteral("---------");
    const char letters[] = "rwx";
    for (int i = 0; i < 9; ++i) {
        if (mode & (0400u >> i)) {
            text[i] = QLatin1Char(letters[i % 3]);
        }
    }
    // An execute place shows s or t with its special bit: lower case with execute, upper without.
    auto special = [&](int place, uint32_t bit, char letter) {
        if (mode & bit) {
            const bool executable = text[place] == QLatin1Char('x');
            text[place] = QLatin1Char(executable ? letter : char(letter - 'a' + 'A'));
        }
    };
    special(2, S_ISUID, 's');
    special(5, S_ISGID, 's');
    special(8, S_ISVTX, 't');
    return QStringLiteral("%1 (%2)").arg(text).arg(mode & 07777, mode & 07000 ? 4 : 3, 8,
                                                   QLatin1Char('0'));
}

QString ARXItemFacts::sizeText(uint64_t size) {
    return tr("%1 (%2 bytes)")
        .arg(ARXFileFormat::formatSize(size), QLocale().toString(qulonglong(size)));
}
