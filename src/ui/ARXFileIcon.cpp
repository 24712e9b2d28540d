#include "ui/ARXFileIcon.h"

#include "platform/ARXMimeTypes.h"

#include <QApplication>
#include <QStyle>

namespace ARXFileIcon {

QIcon forPath(const Path& path) {
    const QString type = ARXMimeTypes::typeOfPath(path);
    const bool folder = type == QLatin1String(ARXMimeTypes::kFolderType);
    const QIcon builtIn =
        QApplication::style()->standardIcon(folder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon);
    const QIcon generic = QIcon::fromTheme(
        folder ? QStringLiteral("folder") : ARXMimeTypes::genericIconName(type), builtIn);
    return QIcon::fromTheme(ARXMimeTypes::iconName(type), generic);
}

} // namespace ARXFileIcon
