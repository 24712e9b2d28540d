#include "ui/ARXFileIcon.h"

#include "platform/ARXMimeTypes.h"

#include <QApplication>
#include <QHash>
#include <QStyle>

namespace ARXFileIcon {

QIcon forType(const QString& type) {
    // One icon per type for the whole program: a folder of 100,000 files has a handful of types,
    // and a shared QIcon lets Qt keep each rendered size once instead of once per row.
    static QHash<QString, QIcon> cache;
    const auto found = cache.constFind(type);
    if (found != cache.constEnd()) {
        return *found;
    }
    const bool folder = type == QLatin1String(ARXMimeTypes::kFolderType);
    static const QIcon builtInFile = QApplication::style()->standardIcon(QStyle::SP_FileIcon);
    static const QIcon builtInFolder = QApplication::style()->standardIcon(QStyle::SP_DirIcon);
    const QIcon generic =
        QIcon::fromTheme(folder ? QStringLiteral("folder") : ARXMimeTypes::genericIconName(type),
                         folder ? builtInFolder : builtInFile);
    const QIcon icon = QIcon::fromTheme(ARXMimeTypes::iconName(type), generic);
    cache.insert(type, icon);
    return icon;
}

QIcon forPath(const Path& path) {
    return forType(ARXMimeTypes::typeOfPath(path));
}

} // namespace ARXFileIcon
