// What an entry's item is and the texts shown for it: type, package tests, kind, brief info,
// media facts, tag colours.

#include "app/ARXConf.h"
#include "model/ARXFileEntry.h"
#include "model/ARXFileEntryMedia.h"
#include "model/ARXFileFormat.h"
#include "platform/ARXDirectoryReader.h"
#include "platform/ARXMimeTypes.h"

#include <QCoreApplication>

#include <algorithm>

QString ARXFileEntry::typeIdentifier() const {
    const QString type = ARXMimeTypes::typeOfPath(_path);
    // The database judges an item that is not there (a placeholder) by its name; a folder's
    // placeholder is still a folder.
    if (type == QLatin1String(ARXMimeTypes::kDataType) && target()._isFolder) {
        return QString::fromLatin1(ARXMimeTypes::kFolderType);
    }
    return type;
}

bool ARXFileEntry::hasPackageExtension() const {
    if (_link) {
        return _link->hasPackageExtension();
    }
    return _isFolder && ARXConf::isPackageExtension(ARXPath::extension(name()));
}

bool ARXFileEntry::isPackage() const {
    // A package is a folder whose extension is in the package list, nothing else on Linux; no
    // type lookup is needed, which keeps sorting and folder lists free of file reads.
    return hasPackageExtension();
}

bool ARXFileEntry::isFolderItem() const {
    if (_link) {
        return _link->isFolderItem();
    }
    return _isFolder && !isPackage();
}

QString ARXFileEntry::kind() const {
    QString text = ARXMimeTypes::kindText(typeIdentifier());
    if (text.isEmpty()) {
        text = QCoreApplication::translate("Atrium", "File");
    }
    QStringList words = text.split(u' ');
    for (QString& word : words) {
        if (word.isEmpty()) {
            continue;
        }
        const qsizetype first = word.at(0).isHighSurrogate() && word.size() > 1 ? 2 : 1;
        word = word.left(first).toUpper() + word.mid(first);
    }
    return words.join(u' ');
}

std::optional<QString> ARXFileEntry::briefInfo() {
    const QString type = typeIdentifier();
    if (ARXMimeTypes::conformsTo(type, ARXTypeFamily::archive)) {
        return ARXFileFormat::formatSize(size);
    }
    if (isFolderItem()) {
        std::optional<size_t> count;
        if (_preparedFolderChildren) {
            count = _children.size();
        } else {
            count = ARXDirectoryReader::itemCount(_path);
        }
        if (!count || *count == 0) {
            return QCoreApplication::translate("Atrium", "empty");
        }
        if (*count == 1) {
            return QCoreApplication::translate("Atrium", "1 item");
        }
        return QCoreApplication::translate("Atrium", "%d items")
            .replace(QLatin1String("%d"), QString::number(*count));
    }
    if (ARXMimeTypes::conformsTo(type, ARXTypeFamily::image)) {
        return infoDimensions();
    }
    if (ARXMimeTypes::conformsTo(type, ARXTypeFamily::audiovisual)) {
        return infoDuration();
    }
    return std::nullopt;
}

QString ARXFileEntry::displayName() const {
    if (_localName) {
        return *_localName;
    }
    QString text = ARXPath::display(name());
    // A line break would break the row; it shows and sorts as a question mark.
    text.replace(u'\r', u'?').replace(u'\n', u'?');
    return text;
}

std::vector<ARXTagColor> ARXFileEntry::tagColors() const {
    std::vector<ARXTagColor> result;
    const std::shared_ptr<const ARXTagColorSource> source = ARXTagColorSource::current();
    if (!tags || tags->isEmpty() || !source) {
        return result;
    }
    const std::vector<ARXTagColor>& colors = source->colors();
    for (const QString& tag : *tags) {
        const int index = source->colorIndex(tag);
        if (index <= 0 || size_t(index) >= colors.size()) {
            continue;
        }
        const ARXTagColor color = colors[size_t(index)];
        if (std::find(result.begin(), result.end(), color) == result.end()) {
            result.push_back(color);
        }
    }
    // The first tag's colour is drawn last, on top.
    std::reverse(result.begin(), result.end());
    return result;
}

// ----- media facts

ARXFileEntry::Media& ARXFileEntry::media() {
    if (!_media) {
        _media = std::make_unique<Media>();
    }
    if (_media->source.empty()) {
        _media->source = target()._path;
    }
    return *_media;
}

std::optional<ARXPixelSize> ARXFileEntry::dimensions() {
    Media& facts = media();
    if (!facts.dimensions) {
        const QString type = typeIdentifier();
        std::optional<ARXPixelSize> pixels;
        if (ARXMimeTypes::conformsTo(type, ARXTypeFamily::image)) {
            pixels = ARXMediaFacts::imageSize(facts.source);
        } else if (ARXMimeTypes::conformsTo(type, ARXTypeFamily::movie)) {
            // One probe answers both facts of a video.
            const ARXMediaInfo info = ARXMediaFacts::probe(facts.source);
            pixels = info.pixelSize;
            if (!facts.duration) {
                facts.duration.emplace(info.duration);
            }
        }
        facts.dimensions.emplace(pixels);
    }
    return *facts.dimensions;
}

std::optional<double> ARXFileEntry::duration() {
    Media& facts = media();
    if (!facts.duration) {
        const QString type = typeIdentifier();
        std::optional<double> seconds;
        if (ARXMimeTypes::conformsTo(type, ARXTypeFamily::audiovisual)) {
            const ARXMediaInfo info = ARXMediaFacts::probe(facts.source);
            seconds = info.duration;
            if (!facts.dimensions && ARXMimeTypes::conformsTo(type, ARXTypeFamily::movie)) {
                facts.dimensions.emplace(info.pixelSize);
            }
        }
        facts.duration.emplace(seconds);
    }
    return *facts.duration;
}

std::optional<QString> ARXFileEntry::infoDimensions() {
    const std::optional<ARXPixelSize> pixels = dimensions();
    if (!pixels) {
        return std::nullopt;
    }
    return QStringLiteral("%1×%2").arg(pixels->width).arg(pixels->height);
}

std::optional<QString> ARXFileEntry::infoDuration() {
    const std::optional<double> seconds = duration();
    if (!seconds) {
        return std::nullopt;
    }
    return ARXFileFormat::formatDuration(*seconds);
}
