#include "platform/ARXMimeTypes.h"

#include "platform/ARXFileDescriptor.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXResourceValues.h"

#include <QMimeDatabase>

#include <algorithm>
#include <sys/stat.h>

namespace ARXMimeTypes {

namespace {

// As much of a file as the database's content rules look at in practice; more only costs reads.
constexpr size_t kSniffBytes = 16 * 1024;

// Archive and disk-image formats. Types derived from these (compressed tarballs, Java and
// Android packages, office documents stored as ZIP, ...) count as archives too.
const char* const kArchiveTypes[] = {
    "application/zip",
    "application/x-tar",
    "application/gzip",
    "application/x-bzip2",
    "application/x-bzip",
    "application/x-xz",
    "application/x-lzma",
    "application/x-lzip",
    "application/x-lz4",
    "application/zstd",
    "application/x-zstd-compressed-tar",
    "application/x-compress",
    "application/x-7z-compressed",
    "application/x-rar",
    "application/vnd.rar",
    "application/x-compressed-tar",
    "application/x-bzip-compressed-tar",
    "application/x-xz-compressed-tar",
    "application/x-cpio",
    "application/x-archive",
    "application/x-rpm",
    "application/vnd.debian.binary-package",
    "application/x-iso9660-image",
    "application/x-cd-image",
    "application/x-apple-diskimage",
    "application/java-archive",
    "application/x-arj",
    "application/x-lha",
    "application/x-ace",
    "application/x-stuffit",
    "application/x-xar",
};

QString nameText(std::string_view bytes) {
    return ARXPath::display(bytes);
}

QString canonical(const QMimeType& type) {
    return type.isValid() && !type.isDefault() ? type.name() : QString::fromLatin1(kDataType);
}

QString typeOfSpecialFile(uint32_t mode) {
    switch (mode & S_IFMT) {
    case S_IFIFO:
        return QStringLiteral("inode/fifo");
    case S_IFSOCK:
        return QStringLiteral("inode/socket");
    case S_IFCHR:
        return QStringLiteral("inode/chardevice");
    case S_IFBLK:
        return QStringLiteral("inode/blockdevice");
    default:
        return QString::fromLatin1(kDataType);
    }
}

QString typeOfRegularFile(const Path& path, std::string_view name) {
    QMimeDatabase db;
    const QString text = nameText(name);
    const QList<QMimeType> byName = db.mimeTypesForFileName(text);
    if (byName.size() == 1) {
        return canonical(byName.first());
    }
    // Unknown or ambiguous by name ("README", ".ts" as video or translation): let the content
    // decide, with the name still weighing in where it matched.
    std::string head;
    ARXFileDescriptor fd = ARXFileDescriptor::openRegularFile(path);
    if (!fd.isValid() || !ARXFileDescriptor::readPrefix(fd.get(), kSniffBytes, head)) {
        return byName.isEmpty()
                   ? QString::fromLatin1(kDataType)
                   : canonical(db.mimeTypeForFile(text, QMimeDatabase::MatchExtension));
    }
    const QByteArray data(head.data(), qsizetype(head.size()));
    return canonical(db.mimeTypeForFileNameAndData(text, data));
}

bool hasTopLevel(const QMimeType& type, QLatin1String prefix) {
    if (type.name().startsWith(prefix)) {
        return true;
    }
    for (const QString& ancestor : type.allAncestors()) {
        if (ancestor.startsWith(prefix)) {
            return true;
        }
    }
    return false;
}

} // namespace

QString typeOfPath(const Path& path) {
    const ARXFileStatus link = ARXFileStatus::lstat(path);
    if (!link.exists) {
        return typeOfName(ARXPath::lastComponent(path));
    }
    // A link named "latest" that leads to "movie.mkv" is a movie: it is judged as its target,
    // by the target's name.
    Path item = path;
    ARXFileStatus status = link;
    if (link.isSymbolicLink()) {
        const ARXLinkResolution resolution = ARXResourceValues::resolveLink(path);
        if (resolution.target) {
            item = *resolution.target;
            status = ARXFileStatus::stat(item);
        }
        if (!resolution.target || !status.exists) {
            return QStringLiteral("inode/symlink");
        }
    }
    if (status.isDirectory()) {
        return QString::fromLatin1(kFolderType);
    }
    if (!status.isRegular()) {
        return typeOfSpecialFile(status.mode);
    }
    return typeOfRegularFile(item, ARXPath::lastComponent(item));
}

QString typeOfName(std::string_view name) {
    if (name.empty()) {
        return QString::fromLatin1(kDataType);
    }
    return canonical(
        QMimeDatabase().mimeTypeForFile(nameText(name), QMimeDatabase::MatchExtension));
}

QString typeForExtension(std::string_view extension) {
    if (extension.empty()) {
        return QString::fromLatin1(kDataType);
    }
    return typeOfName("file." + std::string(extension));
}

bool conformsTo(const QString& type, const QString& other) {
    QMimeDatabase db;
    const QMimeType mime = db.mimeTypeForName(type);
    if (!mime.isValid()) {
        return type == other;
    }
    return mime.inherits(other);
}

bool conformsTo(const QString& type, ARXTypeFamily family) {
    QMimeDatabase db;
    const QMimeType mime = db.mimeTypeForName(type);
    if (!mime.isValid()) {
        return false;
    }
    switch (family) {
    case ARXTypeFamily::image:
        return hasTopLevel(mime, QLatin1String("image/"));
    case ARXTypeFamily::movie:
        return hasTopLevel(mime, QLatin1String("video/"));
    case ARXTypeFamily::audiovisual:
        return hasTopLevel(mime, QLatin1String("audio/")) ||
               hasTopLevel(mime, QLatin1String("video/"));
    case ARXTypeFamily::archive:
        for (const char* archive : kArchiveTypes) {
            if (mime.inherits(QLatin1String(archive))) {
                return true;
            }
        }
        return false;
    case ARXTypeFamily::text:
        return mime.inherits(QStringLiteral("text/plain"));
    }
    return false;
}

bool isPackage(const QString& type, std::string_view name,
               const std::vector<std::string>& packageExtensions) {
    if (type != QLatin1String(kFolderType)) {
        return false;
    }
    const std::string extension = ARXPath::extension(name);
    if (extension.empty()) {
        return false;
    }
    return std::find(packageExtensions.begin(), packageExtensions.end(), extension) !=
           packageExtensions.end();
}

QString kindText(const QString& type) {
    const QMimeType mime = QMimeDatabase().mimeTypeForName(type);
    return mime.isValid() ? mime.comment() : QString();
}

QString iconName(const QString& type) {
    const QMimeType mime = QMimeDatabase().mimeTypeForName(type);
    return mime.isValid() ? mime.iconName() : QString();
}

QString genericIconName(const QString& type) {
    const QMimeType mime = QMimeDatabase().mimeTypeForName(type);
    return mime.isValid() ? mime.genericIconName() : QString();
}

} // namespace ARXMimeTypes
